// Which reader an image gets.
#include "images/ReadImage.hpp"

#include "Failure.hpp"
#include "images/Sheet.hpp"

namespace engine {

void ImageLayout::applyTo(BurnOptions& options) const {
    if (!mediaCatalogNumber.empty()) options.mediaCatalogNumber = mediaCatalogNumber;
    if (!cdText.empty()) options.cdText = cdText;
}

Result<ImageLayout> readImageFile(const std::string& path) {
    return guarded([&] {
        const std::string name = inCapitals(path);
        if (name.ends_with(".CUE")) return readCueSheet(path);
        if (name.ends_with(".TOC")) return readTocFile(path);
        return readPlainImage(path);
    });
}

} // namespace engine
