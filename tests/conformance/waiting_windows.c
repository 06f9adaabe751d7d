#include <stdio.h>
#include <stdlib.h>
#include <windows.h>

#include "waiting.h"

static DWORD testThread;
static HANDLE besideThread;
static SRWLOCK recordsLock = SRWLOCK_INIT;
static CONDITION_VARIABLE recordsChanged = CONDITION_VARIABLE_INIT;

void prepareWaiting(void) {
    testThread = GetCurrentThreadId();
}

bool onTestThread(void) {
    return GetCurrentThreadId() == testThread;
}

void lockRecords(void) {
    AcquireSRWLockExclusive(&recordsLock);
}

void unlockRecords(void) {
    WakeAllConditionVariable(&recordsChanged);
    ReleaseSRWLockExclusive(&recordsLock);
}

bool waitUntil(bool (*holds)(const void* record), const void* record, uint32_t milliseconds) {
    const double end = secondsNow() + milliseconds / 1000.0;
    AcquireSRWLockExclusive(&recordsLock);
    bool held = holds(record);
    for (double left = end - secondsNow(); !held && left > 0; left = end - secondsNow()) {
        SleepConditionVariableSRW(&recordsChanged, &recordsLock, (DWORD)(left * 1000) + 1, 0);
        held = holds(record);
    }
    ReleaseSRWLockExclusive(&recordsLock);
    return held;
}

void letOthersRun(void) {
    SwitchToThread();
}

static DWORD WINAPI besideMain(void* work) {
    void (*function)(void) = *(void (**)(void))work;
    function();
    return 0;
}

void runBeside(void (*work)(void)) {
    static void (*current)(void);
    current = work;
    besideThread = CreateThread(NULL, 0, besideMain, &current, 0, NULL);
    if (!besideThread) abort();
}

void joinBeside(void) {
    WaitForSingleObject(besideThread, INFINITE);
    CloseHandle(besideThread);
}

double secondsNow(void) {
    LARGE_INTEGER ticks;
    LARGE_INTEGER perSecond;
    QueryPerformanceCounter(&ticks);
    QueryPerformanceFrequency(&perSecond);
    return (double)ticks.QuadPart / (double)perSecond.QuadPart;
}

void temporaryPath(char* path, size_t size) {
    char directory[MAX_PATH + 1] = "";
    GetTempPathA(sizeof directory, directory);
    snprintf(path, size, "%svimba_c_conformance_%lu.xml", directory, GetCurrentProcessId());
}
