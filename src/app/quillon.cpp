// The editor.

#include "qt/program.h"
#include "qt/scratch_folder.h"

#include <QApplication>

#include <cstdlib>
#include <string>

namespace {

/// The command line is one path, also where the shell has cut it at its blanks.
std::string CommandLine(int argc, char** argv)
{
    std::string line;
    for (int i = 1; i < argc; ++i)
        line += (i > 1 ? " " : "") + std::string(argv[i]);
    return line;
}

}  // namespace

int main(int argc, char** argv)
{
    QApplication application(argc, argv);  // takes the toolkit's own options out
    const std::string commandLine = quillon::AbsoluteCommandLine(CommandLine(argc, argv));
    const std::string startFolder = quillon::StartFolder();
    quillon::EnterScratchFolder();
    quillon::Program program(commandLine, startFolder);
    return program.Start() ? QApplication::exec() : EXIT_FAILURE;
}
