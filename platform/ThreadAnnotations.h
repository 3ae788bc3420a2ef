// Names for clang's thread-safety attributes; other compilers see nothing.

#ifndef ORVEX_PLATFORM_THREADANNOTATIONS_H_
#define ORVEX_PLATFORM_THREADANNOTATIONS_H_

#if defined(__clang__)
#define ORVEX_THREAD_ATTRIBUTE(x) __attribute__((x))
#else
#define ORVEX_THREAD_ATTRIBUTE(x)
#endif

#define ORVEX_CAPABILITY(name) ORVEX_THREAD_ATTRIBUTE(capability(name))
#define ORVEX_SCOPED_CAPABILITY ORVEX_THREAD_ATTRIBUTE(scoped_lockable)
#define ORVEX_GUARDED_BY(mutex) ORVEX_THREAD_ATTRIBUTE(guarded_by(mutex))
#define ORVEX_REQUIRES(...) ORVEX_THREAD_ATTRIBUTE(requires_capability(__VA_ARGS__))
#define ORVEX_ACQUIRE(...) ORVEX_THREAD_ATTRIBUTE(acquire_capability(__VA_ARGS__))
#define ORVEX_RELEASE(...) ORVEX_THREAD_ATTRIBUTE(release_capability(__VA_ARGS__))
#define ORVEX_NO_THREAD_SAFETY_ANALYSIS ORVEX_THREAD_ATTRIBUTE(no_thread_safety_analysis)

#endif  // ORVEX_PLATFORM_THREADANNOTATIONS_H_
