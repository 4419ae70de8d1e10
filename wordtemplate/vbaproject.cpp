#include "wordtemplate/vbaproject.h"

#include "wordbridge/error.h"
#include "wordtemplate/compoundfile.h"
#include "wordtemplate/vbacompression.h"

#include <algorithm>
#include <cstdint>
#include <numeric>
#include <QtEndian>
#include <utility>

namespace wordtemplate
{

namespace
{

constexpr std::uint16_t codePage = 1252;
constexpr std::uint32_t english = 0x0409;

// Any fixed value does; it is also the key of the three hidden properties below.
const char* const projectId = "{6E1B3A54-0D7C-4F3E-9C6A-2B8F51D4A7E0}";

template<typename Integer>
void put(QByteArray& bytes, Integer value)
{
    char buffer[sizeof value];
    qToLittleEndian(value, buffer);
    bytes.append(buffer, sizeof value);
}

// A record of the dir stream: id, size, content.
void putRecord(QByteArray& bytes, std::uint16_t id, const QByteArray& content)
{
    put(bytes, id);
    put(bytes, static_cast<std::uint32_t>(content.size()));
    bytes += content;
}

template<typename Integer>
void putNumber(QByteArray& bytes, std::uint16_t id, Integer value)
{
    QByteArray content;
    put(content, value);
    putRecord(bytes, id, content);
}

QByteArray utf16(const QString& text)
{
    QByteArray bytes;
    for (const QChar unit : text)
        put(bytes, unit.unicode());
    return bytes;
}

// Most texts stand twice: in the code page, then in UTF-16 under an id of its own.
void putText(QByteArray& bytes, std::uint16_t id, std::uint16_t unicodeId, const QString& text)
{
    putRecord(bytes, id, text.toLatin1());
    putRecord(bytes, unicodeId, utf16(text));
}

void putReference(QByteArray& bytes, const QString& name, const QByteArray& library)
{
    putText(bytes, 0x0016, 0x003E, name);
    QByteArray content;
    put(content, static_cast<std::uint32_t>(library.size()));
    content += library;
    content.append(6, '\0');
    putRecord(bytes, 0x000D, content);
}

void putModule(QByteArray& bytes, const VbaModule& module)
{
    putRecord(bytes, 0x0019, module.name.toLatin1());
    putRecord(bytes, 0x0047, utf16(module.name));
    putText(bytes, 0x001A, 0x0032, module.name); // name of its stream
    putText(bytes, 0x001C, 0x0048, QString());   // description
    putNumber(bytes, 0x0031,
              std::uint32_t{0}); // the stream holds the source from its first byte on
    putNumber(bytes, 0x001E, std::uint32_t{0});      // help context
    putNumber(bytes, 0x002C, std::uint16_t{0xFFFF}); // cookie
    putRecord(bytes, module.isDocument ? 0x0022 : 0x0021, QByteArray());
    putRecord(bytes, 0x002B, QByteArray());
}

QByteArray dirStream(const QString& name, const std::vector<VbaModule>& modules)
{
    QByteArray bytes;
    putNumber(bytes, 0x0001,
              std::uint32_t{1}); // 32-bit Windows; other systems read it the same way
    putNumber(bytes, 0x0002, english);
    putNumber(bytes, 0x0014, english);
    putNumber(bytes, 0x0003, codePage);
    putRecord(bytes, 0x0004, name.toLatin1());
    putText(bytes, 0x0005, 0x0040, QString());  // description
    putText(bytes, 0x0006, 0x003D, QString());  // help file
    putNumber(bytes, 0x0007, std::uint32_t{0}); // help context
    putNumber(bytes, 0x0008, std::uint32_t{0}); // flags
    put(bytes, std::uint16_t{0x0009}); // version: the size field is 4 although six bytes follow
    put(bytes, std::uint32_t{4});
    put(bytes, std::uint32_t{1});
    put(bytes, std::uint16_t{0});
    putText(bytes, 0x000C, 0x003C, QString()); // constants
    putReference(bytes, QStringLiteral("stdole"),
                 "*\\G{00020430-0000-0000-C000-000000000046}#2.0#0#"
                 "C:\\Windows\\System32\\stdole2.tlb#OLE Automation");
    putReference(bytes, QStringLiteral("Office"),
                 "*\\G{2DF8D04C-5BFA-101B-BDE5-00AA0044DE52}#2.0#0#"
                 "C:\\Program Files\\Common Files\\Microsoft Shared\\OFFICE16\\MSO.DLL#"
                 "Microsoft Office 16.0 Object Library");
    putNumber(bytes, 0x000F, static_cast<std::uint16_t>(modules.size()));
    putNumber(bytes, 0x0013, std::uint16_t{0xFFFF}); // cookie
    for (const VbaModule& module : modules)
        putModule(bytes, module);
    putRecord(bytes, 0x0010, QByteArray());
    return bytes;
}

// The three hidden properties of the PROJECT stream ([MS-OVBA] 2.4.3.2). The seed may be any byte.
QByteArray hiddenProperty(const QByteArray& value, std::uint8_t seed)
{
    constexpr std::uint8_t version = 2;
    const QByteArray id(projectId);
    const auto key = static_cast<std::uint8_t>(std::accumulate(id.cbegin(), id.cend(), 0));

    QByteArray plain(((seed & 6) / 2), '\0'); // ignored by the reader
    put(plain, static_cast<std::uint32_t>(value.size()));
    plain += value;

    auto beforeLast = static_cast<std::uint8_t>(seed ^ version);
    auto last = static_cast<std::uint8_t>(seed ^ key);
    std::uint8_t lastPlain = key;
    QByteArray bytes;
    for (const std::uint8_t byte : {seed, beforeLast, last})
        bytes.append(static_cast<char>(byte));
    for (const char letter : std::as_const(plain)) {
        const auto byte = static_cast<std::uint8_t>(letter);
        const auto hidden = static_cast<std::uint8_t>(byte ^ (beforeLast + lastPlain));
        bytes.append(static_cast<char>(hidden));
        beforeLast = last;
        last = hidden;
        lastPlain = byte;
    }
    return bytes.toHex().toUpper();
}

QByteArray projectStream(const QString& name, const std::vector<VbaModule>& modules)
{
    const QByteArray unprotected(4, '\0');
    const QByteArray noPassword(1, '\0');
    const QByteArray visible(1, '\xFF');

    QByteArray text;
    const auto line = [&text](const QByteArray& content) { text += content + "\r\n"; };
    line("ID=\"" + QByteArray(projectId) + '"');
    for (const VbaModule& module : modules) {
        const QByteArray moduleName = module.name.toLatin1();
        line(module.isDocument ? "Document=" + moduleName + "/&H00000000" : "Module=" + moduleName);
    }
    line("Name=\"" + name.toLatin1() + '"');
    line("HelpContextID=\"0\"");
    line("VersionCompatible32=\"393222000\"");
    line("CMG=\"" + hiddenProperty(unprotected, 0x4A) + '"');
    line("DPB=\"" + hiddenProperty(noPassword, 0x86) + '"');
    line("GC=\"" + hiddenProperty(visible, 0xC2) + '"');
    line("");
    line("[Host Extender Info]");
    line("&H00000001={3832D640-CF90-11CF-8E43-00A0C911005A};VBE;&H00000000");
    line("");
    line("[Workspace]");
    for (const VbaModule& module : modules)
        line(module.name.toLatin1() + "=0, 0, 0, 0, C");
    return text;
}

QByteArray moduleNames(const std::vector<VbaModule>& modules)
{
    QByteArray bytes;
    for (const VbaModule& module : modules) {
        bytes += module.name.toLatin1() + '\0';
        bytes += utf16(module.name) + QByteArray(2, '\0');
    }
    bytes.append(2, '\0');
    return bytes;
}

} // namespace

VbaModule readVbaModule(const QByteArray& text, bool isDocument)
{
    const bool ascii = std::all_of(text.cbegin(), text.cend(),
                                   [](char c) { return static_cast<signed char>(c) > 0; });
    if (!ascii)
        throw wordbridge::Error(QStringLiteral(
            "a VBA module holds a character beyond ASCII; write it as ChrW(number)"));

    VbaModule module;
    module.isDocument = isDocument;
    module.source = text;
    module.source.replace("\r\n", "\n").replace('\n', "\r\n");

    const QByteArray start = "Attribute VB_Name = \"";
    const int end = text.indexOf('"', start.size());
    if (!text.startsWith(start) || end < 0)
        throw wordbridge::Error(QStringLiteral("a VBA module does not begin with its name"));
    module.name = QString::fromLatin1(text.mid(start.size(), end - start.size()));
    return module;
}

QByteArray writeVbaProject(const QString& name, const std::vector<VbaModule>& modules)
{
    // No compiled code: the version 0xFFFF makes every reader compile the source.
    const QByteArray noCompiledCode = QByteArray::fromHex("CC61FFFF000000");
    std::vector<CompoundEntry> vba{
        CompoundEntry::stream(QStringLiteral("_VBA_PROJECT"), noCompiledCode),
        CompoundEntry::stream(QStringLiteral("dir"), compressVba(dirStream(name, modules))),
    };
    for (const VbaModule& module : modules)
        vba.push_back(CompoundEntry::stream(module.name, compressVba(module.source)));
    return writeCompoundFile({
        CompoundEntry::storage(QStringLiteral("VBA"), std::move(vba)),
        CompoundEntry::stream(QStringLiteral("PROJECT"), projectStream(name, modules)),
        CompoundEntry::stream(QStringLiteral("PROJECTwm"), moduleNames(modules)),
    });
}

} // namespace wordtemplate
