// Files whose bytes a producer gives: asked to prepare, and for their forks where HFS+ shows them.
#include "ProducedFiles.hpp"
#include "Failure.hpp"
#include "ResourceFork.hpp"

#include <exception>
#include <memory>
#include <string>
#include <utility>
#include <variant>

namespace engine::plan {

void ProducedFiles::prepare(const ProducedFile& produced, std::string_view name, SourceFile& file) {
    if (!produced.producer)
        fail(ErrorCode::DataProduction, "The file " + inQuotes(name) + " has no producer of its bytes.");
    file.producer = produced.producer.get();
    bool isPrepared = false;
    std::string reason;
    try {
        // Before the call: what began is ended.
        sources_.prepared.push_back({produced.producer, sources_.names.size()});
        isPrepared = file.producer->prepare();
        if (isPrepared) file.fingerprint.size = file.producer->size();
    } catch (const std::exception& problem) {
        isPrepared = false;
        reason = problem.what();
    }
    if (!isPrepared)
        fail(ErrorCode::DataProduction,
             "The producer of the file " + inQuotes(name) + " could not prepare it, or can't tell its size.",
             reason);
}

void ProducedFiles::add(const Node& node, const Content& item, uint8_t filesystems) {
    if ((filesystems & filesystem::hfsPlus) != 0)
        addResourceFork(node, item);
    else if (hasHfsPlus_)
        forkless_.emplace(node.first, &item);
}

void ProducedFiles::showInHfsPlus(const Node& node) {
    if (const auto left = forkless_.extract(node.first)) addResourceFork(node, *left.mapped());
}

// Only where HFS+ shows the file, by whatever name: nothing else could show the fork.
void ProducedFiles::addResourceFork(const Node& node, const Content& item) {
    const auto& produced = std::get<ProducedFile>(item.source);
    SourceFile file;
    try {
        file.fingerprint.size = produced.producer->resourceSize();
    } catch (const std::exception& problem) {
        fail(ErrorCode::DataProduction,
             "The producer of the file " + inQuotes(item.name) + " can't tell the size of its resource fork.",
             problem.what());
    }
    if (file.fingerprint.size == 0) return;
    auto fork = std::make_shared<ResourceFork>(produced.producer, tree_.extentOf(node) == nullptr);
    file.producer = fork.get();
    sources_.forks.push_back(std::move(fork));
    const uint32_t extent = walker_.addSource(file, item.name, item.name + " (resource fork)");
    tree_.resources.emplace(node.first, extent);
}

} // namespace engine::plan
