#include "host/app/LibraryFile.h"

#include <QCoreApplication>
#include <QFile>
#include <QFileInfo>

#include <cstring>
#include <elf.h>
#include <link.h>
#include <optional>

namespace host {

namespace {

using ElfHeader = ElfW(Ehdr);
using ProgramHeader = ElfW(Phdr);

struct Texts
{
    Q_DECLARE_TR_FUNCTIONS(host::LibraryFile)
};

template <typename Record> std::optional<Record> readRecord(QFile &file, quint64 offset)
{
    Record record = {};
    const auto size = static_cast<qint64>(sizeof(Record));
    if (!file.seek(static_cast<qint64>(offset)) || file.read(reinterpret_cast<char *>(&record), size) != size)
        return std::nullopt;
    return record;
}

std::optional<ElfHeader> ownHeader()
{
    QFile self(QStringLiteral("/proc/self/exe"));
    if (!self.open(QIODevice::ReadOnly))
        return std::nullopt;
    return readRecord<ElfHeader>(self, 0);
}

bool isForThisProcessor(const ElfHeader &header)
{
    static const std::optional<ElfHeader> own = ownHeader();
    if (!own)
        return true; // the loader will tell
    return header.e_ident[EI_CLASS] == own->e_ident[EI_CLASS] &&
           header.e_ident[EI_DATA] == own->e_ident[EI_DATA] && header.e_machine == own->e_machine;
}

/// Whether [offset, offset + size) lies within the file.
bool fits(quint64 offset, quint64 size, quint64 fileSize)
{
    return offset <= fileSize && size <= fileSize - offset;
}

bool isWhole(QFile &file, const ElfHeader &header)
{
    const auto fileSize = static_cast<quint64>(file.size());
    if (!fits(header.e_shoff, quint64{header.e_shnum} * header.e_shentsize, fileSize))
        return false;
    if (header.e_phentsize != sizeof(ProgramHeader))
        return false;
    for (unsigned i = 0; i < header.e_phnum; ++i) {
        const auto segment = readRecord<ProgramHeader>(file, header.e_phoff + i * sizeof(ProgramHeader));
        if (!segment)
            return false;
        if (segment->p_type == PT_LOAD && !fits(segment->p_offset, segment->p_filesz, fileSize))
            return false;
    }
    return true;
}

} // namespace

LibraryFile examineLibrary(const QString &path)
{
    if (!QFileInfo(path).isFile()) // opening a pipe would wait for its writer
        return {LibraryFileState::NotALibrary, Texts::tr("not a file")};
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly | QIODevice::Unbuffered))
        return {LibraryFileState::NotALibrary, file.errorString()};
    const QByteArray magic = file.read(SELFMAG);
    if (magic != QByteArray(ELFMAG, SELFMAG))
        return {LibraryFileState::NotALibrary, Texts::tr("not a shared library")};
    const QString damaged = Texts::tr("the file is damaged: a part of it is missing");
    const auto header = readRecord<ElfHeader>(file, 0);
    if (!header)
        return {LibraryFileState::Damaged, damaged};
    if (!isForThisProcessor(*header))
        return {LibraryFileState::OtherProcessor, Texts::tr("built for another processor")};
    if (header->e_type != ET_DYN)
        return {LibraryFileState::NotALibrary, Texts::tr("not a shared library")};
    if (!isWhole(file, *header))
        return {LibraryFileState::Damaged, damaged};
    return {LibraryFileState::Usable, {}};
}

} // namespace host
