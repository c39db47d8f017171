// The folder of a run's scratch files.
//
// Their names are the same in every run, so two runs in one folder would take each other's. Each
// run has a folder of its own, open to nobody else, as its current directory.

#pragma once

#include <string>

namespace quillon {

/// Makes a folder of this run alone the current directory: under $XDG_RUNTIME_DIR or, where none
/// can be made there, among the temporary files. It goes at the end of the run; what a killed run
/// has left goes at a later start. Where no folder can be made, the current directory stays. Paths
/// in the program's own environment variables are made absolute before.
void EnterScratchFolder();

/// The folder that the program was started in, or the user's home where that cannot be written.
/// The file dialogs begin there.
std::string StartFolder();

/// The command line with its path made absolute, so that it means the same file in every folder. A
/// leading quote stays in front.
std::string AbsoluteCommandLine(const std::string& commandLine);

}  // namespace quillon
