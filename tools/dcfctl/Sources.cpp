// Sources; see the header.
#include "Sources.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstddef>
#include <cstring>
#include <map>
#include <set>
#include <utility>

#include "CardFiles.h"
#include "DcfNames.h"
#include "Phrases.h"
#include "Text.h"

namespace dcfctl {
namespace {

/// Where the extension begins, behind its dot; npos without one.
std::size_t ExtensionAt(const std::string& path) {
    const std::size_t dot = path.rfind('.');
    const std::size_t slash = path.rfind('/');
    return dot == std::string::npos || (slash != std::string::npos && dot < slash) ? std::string::npos : dot + 1;
}

std::optional<Finding> ReadSource(const std::string& path, Source& source) {
    source.path = path;
    if (path.empty() || stat(path.c_str(), &source.state) != 0) {
        const int error = path.empty() ? ENOENT : errno;
        return Refused("source-missing", Quoted(path) + " cannot be found (" + std::strerror(error) +
                                             "), and nothing was added; look at the name");
    }
    if (!S_ISREG(source.state.st_mode)) {
        return Refused("source-not-file",
                       Quoted(path) + " is " + KindText(source.state.st_mode) + ", and nothing was added; name files");
    }
    const std::size_t extension = ExtensionAt(path);
    const auto type = extension == std::string::npos ? std::nullopt : TypeFromText(path.substr(extension));
    if (!type.has_value()) {
        return Refused("source-type", Quoted(path) + " is of no type that the card takes, and nothing was added; a "
                                                     "name must end in .JPG, .SRW, .MPO, .MP4 or .AVI");
    }
    source.type = *type;
    if (access(path.c_str(), R_OK) != 0) {
        return Refused("source-unreadable", Quoted(path) + " cannot be read (" + std::strerror(errno) +
                                                "), and nothing was added; check its permissions");
    }
    return std::nullopt;
}

bool IsCompanionType(eFileType type) {
    return type == FILE_TYPE_SRW || type == FILE_TYPE_MPO;
}

std::string Stem(const Source& source) {
    return source.path.substr(0, ExtensionAt(source.path));
}

/// The JPG without a companion yet that a raw or multi-picture file belongs to.
Shot* PartnerOf(std::vector<Shot>& shots, const Source& source) {
    const auto found = std::find_if(shots.begin(), shots.end(), [&](const Shot& shot) {
        return shot.file.type == FILE_TYPE_JPG && !shot.companion.has_value() && Stem(shot.file) == Stem(source);
    });
    return found == shots.end() ? nullptr : &*found;
}

/// A raw file is the closer relation, so it comes first where there are both.
std::vector<Shot> PairUp(const std::vector<Source>& sources) {
    std::map<std::string, std::vector<std::size_t>> byStem;
    for (std::size_t i = 0; i < sources.size(); ++i) {
        byStem[Stem(sources[i])].push_back(i);
    }
    std::map<std::size_t, Shot> shots; // by the place of the first of a pair
    for (const auto& [stem, places] : byStem) {
        std::vector<Shot> alike;
        std::vector<std::size_t> first;
        const auto add = [&, &places = places](auto belongs) {
            for (const std::size_t place : places) {
                if (!belongs(sources[place].type)) {
                    continue;
                }
                Shot* partner = IsCompanionType(sources[place].type) ? PartnerOf(alike, sources[place]) : nullptr;
                if (partner == nullptr) {
                    alike.push_back({sources[place], std::nullopt});
                    first.push_back(place);
                } else {
                    partner->companion = sources[place];
                    std::size_t& at = first[static_cast<std::size_t>(partner - alike.data())];
                    at = std::min(at, place);
                }
            }
        };
        add([](eFileType type) { return !IsCompanionType(type); });
        add([](eFileType type) { return type == FILE_TYPE_SRW; });
        add([](eFileType type) { return type == FILE_TYPE_MPO; });
        for (std::size_t i = 0; i < alike.size(); ++i) {
            shots.emplace(first[i], alike[i]);
        }
    }
    std::vector<Shot> ordered;
    ordered.reserve(shots.size());
    for (auto& [place, shot] : shots) {
        ordered.push_back(std::move(shot));
    }
    return ordered;
}

} // namespace

std::variant<std::vector<Shot>, Finding> ReadSources(const std::vector<std::string>& paths) {
    std::vector<Source> sources;
    std::set<std::pair<dev_t, ino_t>> seen;
    for (const std::string& path : paths) {
        Source source;
        if (auto finding = ReadSource(path, source)) {
            return *finding;
        }
        if (!seen.insert({source.state.st_dev, source.state.st_ino}).second) {
            return Refused("source-twice", Quoted(path) + " is given twice, and nothing was added; name it once");
        }
        sources.push_back(std::move(source));
    }
    return PairUp(sources);
}

} // namespace dcfctl
