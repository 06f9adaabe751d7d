#define _POSIX_C_SOURCE 200809L

#include <errno.h>
#include <pthread.h>
#include <sched.h>
#include <stdio.h>
#include <stdlib.h>
#include <time.h>
#include <unistd.h>

#include "waiting.h"

static pthread_t testThread;
static pthread_t besideThread;
static pthread_mutex_t recordsMutex = PTHREAD_MUTEX_INITIALIZER;
static pthread_cond_t recordsChanged;

void prepareWaiting(void) {
    testThread = pthread_self();
    pthread_condattr_t attributes;
    pthread_condattr_init(&attributes);
    pthread_condattr_setclock(&attributes, CLOCK_MONOTONIC);
    pthread_cond_init(&recordsChanged, &attributes);
    pthread_condattr_destroy(&attributes);
}

bool onTestThread(void) {
    return pthread_equal(testThread, pthread_self()) != 0;
}

void lockRecords(void) {
    pthread_mutex_lock(&recordsMutex);
}

void unlockRecords(void) {
    pthread_cond_broadcast(&recordsChanged);
    pthread_mutex_unlock(&recordsMutex);
}

static struct timespec afterMilliseconds(uint32_t milliseconds) {
    struct timespec time;
    clock_gettime(CLOCK_MONOTONIC, &time);
    time.tv_sec += (time_t)(milliseconds / 1000);
    time.tv_nsec += (long)(milliseconds % 1000) * 1000000L;
    if (time.tv_nsec >= 1000000000L) {
        time.tv_nsec -= 1000000000L;
        ++time.tv_sec;
    }
    return time;
}

bool waitUntil(bool (*holds)(const void* record), const void* record, uint32_t milliseconds) {
    const struct timespec end = afterMilliseconds(milliseconds);
    pthread_mutex_lock(&recordsMutex);
    bool held = holds(record);
    int result = 0;
    while (!held && result != ETIMEDOUT) {
        result = pthread_cond_timedwait(&recordsChanged, &recordsMutex, &end);
        held = holds(record);
    }
    pthread_mutex_unlock(&recordsMutex);
    return held;
}

void letOthersRun(void) {
    sched_yield();
}

static void* besideMain(void* work) {
    void (*function)(void) = *(void (**)(void))work;
    function();
    return NULL;
}

void runBeside(void (*work)(void)) {
    static void (*current)(void);
    current = work;
    if (pthread_create(&besideThread, NULL, besideMain, &current) != 0) abort();
}

void joinBeside(void) {
    pthread_join(besideThread, NULL);
}

double secondsNow(void) {
    struct timespec time;
    clock_gettime(CLOCK_MONOTONIC, &time);
    return (double)time.tv_sec + (double)time.tv_nsec / 1e9;
}

void temporaryPath(char* path, size_t size) {
    const char* directory = getenv("TMPDIR");
    snprintf(path, size, "%s/vimba_c_conformance_%ld.xml", directory ? directory : "/tmp", (long)getpid());
}
