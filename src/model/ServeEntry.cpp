// SPDX-License-Identifier: MIT
#include "ServeEntry.h"

#include <boost/uuid/random_generator.hpp>

namespace brevane {

boost::uuids::uuid makeEntryId() {
    static thread_local boost::uuids::random_generator_mt19937 generate;
    return generate();
}

} // namespace brevane
