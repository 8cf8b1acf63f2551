#pragma once

#include <span>

#include "app/field/exact/sweep_plan.hpp"
#include "app/field/rows/rows_plan.hpp"

/// An instruction set for which both sweeps are compiled.
struct InstructionSet {
  const char* name;
  bool (*is_supported)();  // by the processor at hand
  const SweepKernel& exact;
  const RowKernel& rows;
};

/// All of the program, the widest first; the last runs everywhere.
std::span<const InstructionSet> instruction_sets();

/// The widest that the processor has, or the one named by the environment variable ORVA_KERNEL.
/// A name that is unknown or not for this processor ends the run with "kernel \"%s\" is not available, only
/// ...", which lists those that are.
const InstructionSet& choose_instruction_set();
