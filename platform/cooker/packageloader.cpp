#include "platform/cooker/packageloader.h"

#include "platform/cooker/packagereader.h"

#include <filesystem>
#include <fstream>

namespace vellor::cooker {

namespace fs = std::filesystem;

namespace {

constexpr int kMaxIncludeDepth = 32;
constexpr std::size_t kMaxFileSize = std::size_t{1} << 28;

std::string keyOf(const fs::path& path)
{
    std::error_code code;
    const fs::path canonical = fs::weakly_canonical(path, code);
    return code ? path.string() : canonical.string();
}

} // namespace

std::optional<std::string> readFile(const std::string& path)
{
    std::error_code code;
    if (!fs::is_regular_file(path, code))
        return std::nullopt;
    const auto size = fs::file_size(path, code);
    std::ifstream file(path, std::ios::binary);
    if (code || size > kMaxFileSize || !file)
        return std::nullopt;
    std::string bytes(static_cast<std::size_t>(size), '\0');
    file.read(bytes.data(), static_cast<std::streamsize>(size));
    if (static_cast<std::uintmax_t>(file.gcount()) != size)
        return std::nullopt;
    return bytes;
}

const PackageSource* PackageLoader::load(const std::string& path, std::string bytes)
{
    const std::string key = keyOf(path);
    const auto known = m_loaded.find(key); // pushed twice, or included by an earlier one
    return known != m_loaded.end() ? known->second.package.get() : read(key, path, std::move(bytes), 0);
}

const PackageSource* PackageLoader::read(const std::string& key, const std::string& path, std::string bytes,
                                         int depth)
{
    Loaded& loaded = m_loaded[key];
    loaded.underWay = true;
    const std::int32_t file = m_sources.add(path, std::move(bytes));
    std::unique_ptr<PackageSource> package = readPackage(m_sources, file, m_diagnostics);
    if (package)
        follow(*package, path, depth);
    loaded.underWay = false;
    loaded.package = std::move(package);
    return loaded.package.get();
}

void PackageLoader::follow(PackageSource& package, const std::string& path, int depth)
{
    for (const IncludeSource& entry : package.includes) {
        if (!entry.as || !entry.url)
            continue;
        if (package.included.count(entry.as.text)) {
            m_diagnostics.error(entry.as.place,
                                "the name '" + entry.as.text + "' is taken by another include");
            continue;
        }
        package.included[entry.as.text] = include(entry, path, depth + 1);
    }
}

const PackageSource* PackageLoader::include(const IncludeSource& entry, const std::string& path, int depth)
{
    const std::optional<std::string> target = resolveUrl(entry.url, path, m_options, m_diagnostics);
    if (!target)
        return nullptr;
    const std::string key = keyOf(*target);
    const auto known = m_loaded.find(key);
    if (known != m_loaded.end()) {
        if (known->second.underWay)
            m_diagnostics.error(entry.url.place, "packages include each other in a circle: '" +
                                                     entry.url.text + "' is being read already");
        return known->second.package.get();
    }
    if (depth > kMaxIncludeDepth) {
        m_diagnostics.error(entry.url.place, "includes are nested too deeply");
        return nullptr;
    }
    std::optional<std::string> bytes = readFile(*target);
    if (!bytes) {
        m_diagnostics.error(entry.url.place, "the file '" + *target + "' can't be read");
        return nullptr;
    }
    return read(key, *target, std::move(*bytes), depth);
}

std::optional<std::string> resolveUrl(const SourceText& url, const std::string& from,
                                      const CookOptions& options, Diagnostics& diagnostics)
{
    const std::size_t scheme = url.text.find("://");
    if (scheme == std::string::npos)
        return (fs::path(from).parent_path() / url.text).string();
    const std::string alias = url.text.substr(0, scheme);
    const fs::path file(url.text.substr(scheme + 3));
    const auto known = options.aliases.find(alias);
    if (known == options.aliases.end()) {
        std::vector<std::string> names;
        for (const auto& entry : options.aliases)
            names.push_back(entry.first);
        diagnostics.error(url.place,
                          "unknown alias '" + alias + "'; " +
                              (names.empty() ? "there are none" : "there are " + quotedList(names)));
        return std::nullopt;
    }
    for (const fs::path& part : file) {
        if (part == ".." || file.is_absolute()) {
            diagnostics.error(url.place, "a URL must not leave the folder of its alias");
            return std::nullopt;
        }
    }
    return (fs::path(known->second) / file).string();
}

} // namespace vellor::cooker
