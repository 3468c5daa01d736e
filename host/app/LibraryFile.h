#pragma once

#include <QString>

namespace host {

/// What can be told of a file before the system's loader touches it.
enum class LibraryFileState {
    Usable,
    NotALibrary,
    Damaged,        ///< mapping it would end the program with a bus error
    OtherProcessor, ///< built for another one than this program
};

struct LibraryFile
{
    LibraryFileState state = LibraryFileState::NotALibrary;
    QString reason; ///< for the user; empty when usable
};

/// Reads the headers of an ELF file. A shared library whose end is missing
/// passes the loader's own checks and then crashes, so it is recognised here.
LibraryFile examineLibrary(const QString &path);

} // namespace host
