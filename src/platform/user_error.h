// The base of every failure that reaches the user: its text is a whole sentence for a person.
#pragma once

#include <stdexcept>

namespace ostrelon {

class UserError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

}  // namespace ostrelon
