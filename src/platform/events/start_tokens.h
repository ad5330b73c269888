// By what the desktop knows that a person has asked for a start of the program.
#pragma once

#include "platform/events/open_request.h"

namespace kelm {

/// The tokens that this process was started with, taken out of its environment: they are for one start, and the
/// children of this one are others. To be called before other threads run.
openRequest::Tokens takeStartTokens();

/// Gives the tokens to the environment, for the toolkit's own start or for a program that starts in this one's place.
void putStartTokens(const openRequest::Tokens& tokens);

} // namespace kelm
