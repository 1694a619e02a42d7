// SPDX-License-Identifier: MIT
#pragma once

#include <thread>

namespace brevane {

/// Reads the system's font list on its own thread, which takes a tenth of the time to the first
/// frame and would otherwise block the first text measurement. Created before the QApplication;
/// its destructor joins the thread. Throws std::system_error if the thread cannot be started (not
/// std::async, which waits for ever then with libc++). Does nothing on macOS.
class FontListReader {
public:
    FontListReader();
    ~FontListReader();
    FontListReader(const FontListReader&) = delete;
    FontListReader& operator=(const FontListReader&) = delete;

private:
    std::thread thread_;
};

} // namespace brevane
