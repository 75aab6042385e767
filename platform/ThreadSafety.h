#pragma once

/// The thread-safety attributes of clang, empty for other compilers: clang checks that a field is touched
/// only under the lock that its declaration names (https://clang.llvm.org/docs/ThreadSafetyAnalysis.html).
#if defined(__clang__)
#define KELTO_ATTRIBUTE(x) __attribute__((x))
#else
#define KELTO_ATTRIBUTE(x)
#endif

#define KELTO_CAPABILITY(name) KELTO_ATTRIBUTE(capability(name))
#define KELTO_SCOPED_CAPABILITY KELTO_ATTRIBUTE(scoped_lockable)
#define KELTO_GUARDED_BY(lock) KELTO_ATTRIBUTE(guarded_by(lock))
#define KELTO_ACQUIRE(...) KELTO_ATTRIBUTE(acquire_capability(__VA_ARGS__))
#define KELTO_RELEASE(...) KELTO_ATTRIBUTE(release_capability(__VA_ARGS__))
#define KELTO_TRY_ACQUIRE(...) KELTO_ATTRIBUTE(try_acquire_capability(__VA_ARGS__))
#define KELTO_REQUIRES(...) KELTO_ATTRIBUTE(requires_capability(__VA_ARGS__))
#define KELTO_EXCLUDES(...) KELTO_ATTRIBUTE(locks_excluded(__VA_ARGS__))
#define KELTO_RETURN_CAPABILITY(lock) KELTO_ATTRIBUTE(lock_returned(lock))
#define KELTO_NO_ANALYSIS KELTO_ATTRIBUTE(no_thread_safety_analysis)
