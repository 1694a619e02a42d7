// SPDX-License-Identifier: MIT
#include "ChildProcess.h"

#include "Launch.h"
#include "RunningChild.h"

#include <utility>

namespace brevane {

std::expected<ChildProcess::Outcome, std::error_code>
ChildProcess::run(const Interrupt& interrupt) const {
    auto output = Pipe::open();
    if (!output) return std::unexpected(output.error());
    auto error = Pipe::open();
    if (!error) return std::unexpected(error.error());

    const auto process = launch(*this, output->writeEnd.get(), error->writeEnd.get());
    if (!process) return std::unexpected(process.error());

    // The outputs are at their end once the child has closed them, so none may stay with us.
    output->writeEnd.close();
    error->writeEnd.close();
    RunningChild child(*process, std::move(output->readEnd), std::move(error->readEnd), patience);
    return child.finish(interrupt);
}

} // namespace brevane
