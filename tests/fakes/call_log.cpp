// SPDX-License-Identifier: MIT
#include "call_log.h"

#include <algorithm>
#include <sstream>

namespace umbrixlib::test {

CallLog& CallLog::instance()
{
    static CallLog log;
    return log;
}

void CallLog::clear()
{
    std::scoped_lock const lock(mutex_);
    calls_.clear();
    buffers_.clear();
}

void CallLog::record(std::string call)
{
    std::scoped_lock const lock(mutex_);
    calls_.push_back(std::move(call));
}

std::string CallLog::buffer(void const* address)
{
    std::scoped_lock const lock(mutex_);
    if (address == nullptr) {
        return "null";
    }
    auto const known = std::find(buffers_.begin(), buffers_.end(), address);
    auto const number = known - buffers_.begin() + 1;
    if (known == buffers_.end()) {
        buffers_.push_back(address);
    }
    std::string name = std::to_string(number);
    name.insert(0, 1, '#');
    return name;
}

std::string text(bool value)
{
    return value ? "true" : "false";
}

std::string text(int value)
{
    return std::to_string(value);
}

std::string text(float value)
{
    std::ostringstream out;
    out << value;
    return out.str();
}

std::string text(void const* buffer)
{
    return CallLog::instance().buffer(buffer);
}

} // namespace umbrixlib::test
