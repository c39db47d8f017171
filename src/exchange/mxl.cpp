#include "exchange/mxl.h"

#include "exchange/musicxml_reader.h"
#include "exchange/musicxml_writer.h"
#include "xml/xml_document.h"
#include "zip/zip_archive.h"

#include <algorithm>

namespace quillon {

namespace {

constexpr const char* kContainer = "META-INF/container.xml";
constexpr const char* kScore = "score.musicxml";
constexpr std::string_view kMimeType = "application/vnd.recordare.musicxml";
constexpr std::size_t kLargestScore = std::size_t{8} * 1024 * 1024;

/// The path that the container names first; "" without a container.
std::string PathInContainer(std::string_view archive)
{
    const std::optional<std::string> container = ReadZip(archive, kContainer, kLargestScore);
    if (!container)
        return {};
    const XmlElement root = ParseXml(*container);
    const XmlElement* files = root.Find("rootfiles");
    const XmlElement* file = files ? files->Find("rootfile") : nullptr;
    return file ? std::string(file->Attribute("full-path")) : std::string();
}

/// The first name that may be a score's: in an archive without a container, or where the container
/// and the archive spell a name in different character sets.
std::string FirstScore(std::string_view archive)
{
    for (const std::string& name : ZipNames(archive))
        if (!name.starts_with("META-INF/") &&
            (name.ends_with(".xml") || name.ends_with(".musicxml")))
            return name;
    return {};
}

std::string Unpack(std::string_view archive)
{
    for (const std::string& name : {PathInContainer(archive), FirstScore(archive)})
        if (!name.empty())
            if (std::optional<std::string> score = ReadZip(archive, name, kLargestScore))
                return *score;
    throw ExchangeError("There is no score in it; export one from the program that it comes from.");
}

}  // namespace

std::vector<FoundTune> ReadMxl(std::string_view bytes)
{
    if (!IsZip(bytes))
        return ReadMusicXml(bytes);
    try {
        return ReadMusicXml(Unpack(bytes));
    } catch (const ZipError& error) {
        throw ExchangeError(std::string(error.what()) + " Export it again from its program.");
    } catch (const XmlError& error) {
        throw ExchangeError(std::string(kContainer) + ": " + error.what() +
                            " Export it again from its program.");
    }
}

std::string WriteMxl(const Music& music, Notices& notices)
{
    const std::string container = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
                                  "<container>\n  <rootfiles>\n    <rootfile full-path=\"" +
                                  std::string(kScore) +
                                  "\" media-type=\"application/vnd.recordare.musicxml+xml\"/>\n"
                                  "  </rootfiles>\n</container>\n";
    return MakeZip({
        {"mimetype", std::string(kMimeType), false},
        {kContainer, container, true},
        {kScore, WriteMusicXml(music, notices), true}
    });
}

}  // namespace quillon
