#pragma once

#include "core/model/date_time.h"

namespace finora {

// Every "now" in the program comes from here, so tests and `finora-cli --now` are repeatable.
class Clock {
public:
    virtual ~Clock() = default;
    virtual DateTime now() const = 0;
};

// Local wall-clock time at second resolution.
class SystemClock final : public Clock {
public:
    DateTime now() const override;
};

class FixedClock final : public Clock {
public:
    explicit FixedClock(DateTime now) : m_now(now) {}
    DateTime now() const override { return m_now; }
    void set(DateTime now) { m_now = now; }

private:
    DateTime m_now;
};

} // namespace finora
