// SPDX-License-Identifier: MIT
#include <QByteArray>

// The functions with std::string that are missing if Qt was built for another standard library.
std::string QByteArray::toStdString() const {
    return {constData(), static_cast<std::size_t>(size())};
}
