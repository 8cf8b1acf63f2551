#pragma once

struct Molecule;

/// Fills a molecule that mem_init_mol has cleared from the file named by glob_file_input, with the reader of
/// the format inp_format: see fcheck_read and wfn_read.
void input_read(Molecule* molecule);
