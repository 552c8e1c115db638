// FileProducers: a file's producer as the engine asks it.
#pragma once

#import "DRFile.h"

#include "Content.hpp"

namespace discrecording {

/// The file and its producer are retained. Estimating, the producer is neither prepared nor cleaned up.
std::shared_ptr<engine::FileProducer> producerOfFile(DRFile* file, bool estimating);

} // namespace discrecording
