#pragma once

namespace host {

/// How much detail the user wants to see. Plug-ins compare the number.
enum class InterfaceLevel { Basic = 1, Advanced = 2, Expert = 3 };

inline constexpr int DefaultInterfaceLevel = static_cast<int>(InterfaceLevel::Expert);

constexpr bool isInterfaceLevel(int level)
{
    return level >= static_cast<int>(InterfaceLevel::Basic) &&
           level <= static_cast<int>(InterfaceLevel::Expert);
}

} // namespace host
