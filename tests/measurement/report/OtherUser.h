#pragma once

#include <unistd.h>

/// While it lives, the superuser has no more rights than anybody else; others
/// keep theirs.
class OtherUser
{
public:
    OtherUser()
    {
        if (m_user == 0)
            m_hasChanged = seteuid(nobody) == 0;
    }
    ~OtherUser()
    {
        if (m_hasChanged && seteuid(m_user) != 0)
            _exit(1);
    }
    OtherUser(const OtherUser &) = delete;
    OtherUser &operator=(const OtherUser &) = delete;

private:
    static constexpr uid_t nobody = 65534;
    const uid_t m_user = geteuid();
    bool m_hasChanged = false;
};
