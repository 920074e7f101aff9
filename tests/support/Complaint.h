#pragma once

#include <string>

namespace test_support {

/// What the error says that an action throws; empty when it throws none.
template <class Error, class Action>
std::string complaintOf(const Action& action) {
    try {
        action();
    } catch (const Error& error) {
        return error.what();
    }
    return {};
}

}  // namespace test_support
