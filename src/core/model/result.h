#pragma once

#include <type_traits>
#include <utility>
#include <variant>

namespace finora {

// A value, or the reason there is none, for failures a caller must tell apart. Either side
// converts into the result, so a function returns its value or its error as it is; the two
// types must differ for that to be unambiguous.
template <typename T, typename E> class Result {
    static_assert(!std::is_same_v<T, E>, "a result must tell its value from its error by type");

public:
    Result(T value) : m_state(std::in_place_index<0>, std::move(value)) {}
    Result(E error) : m_state(std::in_place_index<1>, std::move(error)) {}

    bool ok() const { return m_state.index() == 0; }
    explicit operator bool() const { return ok(); }

    // Only for a result that is ok(), and error() only for one that is not.
    T& value() { return std::get<0>(m_state); }
    const T& value() const { return std::get<0>(m_state); }
    const E& error() const { return std::get<1>(m_state); }

private:
    std::variant<T, E> m_state;
};

} // namespace finora
