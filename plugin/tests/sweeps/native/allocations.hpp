// Counting and failing of allocations, of whoever makes them: what `allocations.so`, preloaded into an interpreter,
// offers to the sweeps.
#pragma once

namespace sweeps {

/// Who asks for memory.
enum Origin { FROM_INTERPRETER, FROM_NEW, FROM_ELSEWHERE, ORIGINS };

/// What `operator new` throws where it fails. Any other than the first stands for what nobody expects: then nothing but
/// `operator new` counts and fails.
enum Thrown { BAD_ALLOC, STANDARD_EXCEPTION, NO_EXCEPTION };

/// How one run of an operation goes: which allocation fails, and what was counted.
struct Allocations {
    bool active;
    // Nothing counts while `*frame` is another one than `home`: that is while the interpreter runs Python code of the
    // host. Without memory it crashes there all by itself, calling built-in functions with no arguments at all.
    void* const* frame;
    void* home;
    // The size of the one object that is spared while a class is made, 0 at all other times: the reference by which a
    // class knows the classes derived from it. The interpreter itself does not survive without memory for that.
    unsigned long spared;
    Thrown thrown;
    bool everyFurther;
    long failing;
    long counted;
    long failed;
    long sparedObjects;
    long countedBy[ORIGINS];
};

}  // namespace sweeps

/// The one state of the process. A run sets it up; counting happens only in the thread that runs.
extern "C" sweeps::Allocations* sweepAllocations();
