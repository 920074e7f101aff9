#pragma once

#include <stdexcept>

namespace orbitwalk::tool {

/// A failure that ends a command: one clear line for the user. main prints it and exits with 1.
class ToolError : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
};

}  // namespace orbitwalk::tool
