// The resource fork of a file with a producer, as a source of its own: it lies on the disc behind the file's data.
#pragma once

#include "Content.hpp"

#include <memory>
#include <utility>

namespace engine::plan {

class ResourceFork final : public FileProducer {
  public:
    /// `isAlone`: there is no data that the producer would be prepared for when all is asked again.
    ResourceFork(std::shared_ptr<FileProducer> file, bool isAlone)
        : file_(std::move(file)), isAlone_(isAlone) {}

    uint64_t size() override { return file_->resourceSize(); }
    size_t read(uint64_t offset, std::span<std::byte> buffer) override {
        return file_->readResource(offset, buffer);
    }
    bool prepareAgain() override { return !isAlone_ || file_->prepareAgain(); }

  private:
    std::shared_ptr<FileProducer> file_;
    bool isAlone_;
};

} // namespace engine::plan
