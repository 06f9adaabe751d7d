/// Threads, bounded waits and the clock: all that is not plain C stands behind this header.
#pragma once

#include <stdbool.h>
#include <stddef.h>
#include <stdint.h>

/// Milliseconds a test waits for what must come.
enum { PATIENCE_MS = 30000 };

/// To be called once, by the thread that runs the tests.
void prepareWaiting(void);

bool onTestThread(void);

/// One lock guards everything that callbacks record. It is never held during a call into the library.
void lockRecords(void);

/// Gives the lock back and wakes all who wait for a change.
void unlockRecords(void);

/// Waits until `holds(record)`, which is evaluated under the lock; false when the time has run out.
bool waitUntil(bool (*holds)(const void* record), const void* record, uint32_t milliseconds);

/// Waits until a count kept under the lock reaches `wanted`; the first with the usual patience.
bool waitForCount(const unsigned* count, unsigned wanted);
bool waitForCountWithin(const unsigned* count, unsigned wanted, uint32_t milliseconds);

unsigned readCount(const unsigned* count);

/// Asks again and again for what no callback announces; the first with the usual patience.
bool pollUntil(bool (*holds)(void));
bool pollWithin(bool (*holds)(void), uint32_t milliseconds);

/// Gives the processor to another thread that is ready.
void letOthersRun(void);

/// Runs `work` on another thread; one at a time, each to be joined.
void runBeside(void (*work)(void));
void joinBeside(void);

/// Seconds of a clock that never jumps.
double secondsNow(void);

/// A file name of this process in the directory for temporary files.
void temporaryPath(char* path, size_t size);
