#pragma once

/// Part of the plug-in's class set by agreement with hosts; it has no role.
class m_opera
{
public:
    m_opera() = default;
};
