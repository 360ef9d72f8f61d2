#include "commands/lsp/KnownDescriptions.h"

#include <algorithm>
#include <filesystem>
#include <string_view>
#include <system_error>

#include "formats/DescriptionFile.h"

namespace vexa::runner {
namespace {

namespace fs = std::filesystem;

bool isDescription(const fs::directory_entry& entry) {
    constexpr std::string_view kEnding = kDescriptionEnding;
    const std::string name = entry.path().filename().string();
    std::error_code ignored;
    return name.size() > kEnding.size() && name.compare(name.size() - kEnding.size(), kEnding.size(), kEnding) == 0 &&
           entry.is_regular_file(ignored);
}

// Returns the descriptions in a folder by their names; none if it cannot be read.
std::vector<std::string> descriptionsIn(const std::string& folder) {
    std::vector<std::string> files;
    std::error_code error;
    for (fs::directory_iterator entry(folder, error), end; !error && entry != end; entry.increment(error)) {
        if (isDescription(*entry)) files.push_back(entry->path().string());
    }
    std::sort(files.begin(), files.end());
    return files;
}

}  // namespace

void KnownDescriptions::addWorkspace(std::string folder) {
    const bool isNew = std::find(m_workspace.begin(), m_workspace.end(), folder) == m_workspace.end();
    if (isNew && !folder.empty()) m_workspace.push_back(std::move(folder));
}

void KnownDescriptions::removeWorkspace(const std::string& folder) {
    m_workspace.erase(std::remove(m_workspace.begin(), m_workspace.end(), folder), m_workspace.end());
}

// A later description replaces an earlier one of the same add-on.
std::vector<std::string> KnownDescriptions::filesFor(const std::string& folder) const {
    std::vector<std::string> files;
    const auto add = [&](const std::vector<std::string>& more) { files.insert(files.end(), more.begin(), more.end()); };
    for (const std::string& root : m_workspace) add(descriptionsIn(root));
    const bool isRoot = std::find(m_workspace.begin(), m_workspace.end(), folder) != m_workspace.end();
    if (!isRoot && !folder.empty()) add(descriptionsIn(folder));
    add(m_files);
    return files;
}

std::shared_ptr<const Descriptions> KnownDescriptions::forFolder(const std::string& folder) {
    Folder& known = m_folders[folder];
    std::vector<Read> reads;
    for (std::string& file : filesFor(folder)) {
        const FileStamp stamp = stampOf(file);
        reads.push_back({std::move(file), stamp, std::nullopt});
    }
    const auto areSame = [](const Read& one, const Read& other) {
        return one.file == other.file && one.stamp == other.stamp;
    };
    const bool isCurrent = known.descriptions != nullptr &&
                           std::equal(reads.begin(), reads.end(), known.reads.begin(), known.reads.end(), areSame);
    if (isCurrent) return known.descriptions;
    auto descriptions = std::make_shared<Descriptions>();
    for (Read& read : reads) {
        const auto before = std::find_if(known.reads.begin(), known.reads.end(),
                                         [&](const Read& other) { return other.file == read.file; });
        const bool wasRead = before != known.reads.end();
        if (!wasRead || before->stamp != read.stamp) read.description = readDescription(read.file);
        if (!read.description && wasRead && read.stamp.isThere) read.description = before->description;
        if (read.description) descriptions->add(*read.description);
    }
    known.reads = std::move(reads);
    known.descriptions = std::move(descriptions);
    return known.descriptions;
}

void KnownDescriptions::freeUnused() {
    for (auto folder = m_folders.begin(); folder != m_folders.end();) {
        folder = folder->second.descriptions.use_count() <= 1 ? m_folders.erase(folder) : std::next(folder);
    }
}

}  // namespace vexa::runner
