// Before a command destroys what could not be kept, it asks.
#pragma once

#include <functional>
#include <string>

#include "documents/document_session.h"

namespace ostrelon {

/// Runs work that may throw `UserError`. Where it has done nothing since what it replaces cannot be kept, the
/// user is asked, and with their consent it runs once more without keeping. `refused` is called with the
/// sentence of what else it throws, or of why nothing was kept where the user does not agree.
void runKeepingOrAsking(DocumentSession& document, std::function<void()> work,
                        std::function<void(const std::string& refusal)> refused);

}  // namespace ostrelon
