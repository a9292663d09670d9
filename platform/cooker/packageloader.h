#pragma once

#include "platform/cooker/cookoptions.h"
#include "platform/cooker/package.h"

#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace vellor::cooker {

/// The bytes of a file, of at most 256 MiB; nullopt when it can't be read.
std::optional<std::string> readFile(const std::string& path);

/// The path of the file that a URL in a file of sources names: an alias and a file in its folder, or a file
/// beside the one that names it. nullopt when it is wrong, which was told.
std::optional<std::string> resolveUrl(const SourceText& url, const std::string& from,
                                      const CookOptions& options, Diagnostics& diagnostics);

/// Reads authoring files with all that they include, every file once.
class PackageLoader
{
public:
    PackageLoader(Sources& sources, Diagnostics& diagnostics, const CookOptions& options)
        : m_sources(sources), m_diagnostics(diagnostics), m_options(options)
    {
    }

    /// Reads a package whose bytes are here already; includes are looked up beside path. Null when it is no
    /// authoring file, which was told.
    const PackageSource* load(const std::string& path, std::string bytes);

private:
    struct Loaded
    {
        std::unique_ptr<PackageSource> package; // null while it is read, and when it failed
        bool underWay = false;
    };

    void follow(PackageSource& package, const std::string& path, int depth);
    const PackageSource* include(const IncludeSource& include, const std::string& path, int depth);
    const PackageSource* read(const std::string& key, const std::string& path, std::string bytes, int depth);

    Sources& m_sources;
    Diagnostics& m_diagnostics;
    const CookOptions& m_options;
    std::map<std::string, Loaded> m_loaded; // by canonical path
};

} // namespace vellor::cooker
