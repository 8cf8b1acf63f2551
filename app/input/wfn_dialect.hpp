#pragma once

#include <string_view>

class Reader;
struct Molecule;

// WFN files in the dialects of the programs that write them: INPUT_CONVENTION 1.

/// Whether a line is that of the counts, which may stand anywhere in front of the atoms.
bool wfn_has_counts(std::string_view line);

/// Fills a molecule from what stands behind the title, each orbital with its occupation; coefficients are
/// left as they are. `first_line` is the title, or already the line of the counts. Whatever is missing, cut
/// off or not a number, and a function beyond g, ends the run.
void wfn_dialect_read(Molecule* molecule, const char* first_line, Reader& reader);

/// The number behind the equals sign that follows `label` in an orbital's header; false if there is none.
bool wfn_header_value(std::string_view header, std::string_view label, double* value);
inline constexpr std::string_view wfn_occupation_label = "OCC NO", wfn_energy_label = "ENERGY";
