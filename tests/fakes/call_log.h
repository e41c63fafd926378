// SPDX-License-Identifier: MIT
#pragma once

#include <mutex>
#include <string>
#include <vector>

namespace umbrixlib::test {

/// What the recording fakes saw, one line of text a call, in the order in which the calls began. Buffers are
/// called "#1", "#2", ... in the order in which they were first seen.
class CallLog {
public:
    /// The log of this test executable.
    static CallLog& instance();

    void clear();
    void record(std::string call);
    std::string buffer(void const* address);
    std::vector<std::string> const& calls() const { return calls_; }

private:
    std::recursive_mutex mutex_;
    std::vector<std::string> calls_;
    std::vector<void const*> buffers_;
};

/// A list of arguments as text: numbers as they are, bools as words, pointers by their buffer number.
std::string text(bool value);
std::string text(int value);
std::string text(float value);
std::string text(void const* buffer);

template <typename... Arguments>
void record_call(char const* name, Arguments... arguments)
{
    std::string call = std::string(name) + "(";
    [[maybe_unused]] char const* separator = "";
    ((call += separator + text(arguments), separator = ", "), ...);
    CallLog::instance().record(call + ")");
}

} // namespace umbrixlib::test
