#pragma once

/// Prints what every option does on standard output.
void help_print();
