// Functions of the interpreter's own binary, replaced from the outside.
#pragma once

namespace sweeps {

/// Makes every call of `function`, also those from within its own binary, arrive at `replacement` from now on.
///
/// To be called before any other thread runs. Ends the process with a line on standard error where that cannot be done.
void redirect(void* function, void* replacement);

}  // namespace sweeps
