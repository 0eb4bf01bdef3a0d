// The two languages of every message.
#pragma once

namespace zurt {

constexpr int kSerbian = 0;
constexpr int kEnglish = 1;

/// The one of the two texts that the run's language field selects; both stand side by side where a message is
/// written.
inline const char* Say(int Language, const char* serbian, const char* english) {
    return Language == kSerbian ? serbian : english;
}

} // namespace zurt
