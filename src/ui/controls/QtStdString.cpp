// SPDX-License-Identifier: MIT
#include <QByteArray>

// What Qt lacks where it is built for the other standard library: all that passes a std::string.
std::string QByteArray::toStdString() const {
    return {constData(), static_cast<std::size_t>(size())};
}
