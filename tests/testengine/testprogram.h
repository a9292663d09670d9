/*
 * The "binary" of the test engine: a small text, one instruction a line, that begins with the line
 * "testengine".
 *
 *   input UID TYPE [COMPONENT...]                 components as hexadecimal words; for a string code points
 *   output UID TYPE                               a number: component i of output UID is UID + i
 *   output UID 5 WIDTH HEIGHT FORMAT [ORDER]      a picture (testpicture.h)
 *   dynamic UID                                   the output's description says size 0
 *   fail handle CODE | desc CODE | start CODE | push CODE | hint CODE | flush CODE
 *   fail fetch UID CODE
 *   cache                                         vellorHandleStart parks blocks and takes them back
 *   progress TOTAL [BURN]                         reports 0 to TOTAL, spending BURN ms of processor time on
 * each step
 *
 * Any other data is taken for a program with one picture of each kind, so that the engine can be switched in
 * under any document.
 */
#ifndef TESTPROGRAM_H
#define TESTPROGRAM_H

#include <vellor/engine.h>

enum
{
    MAX_ITEMS = 128,
    MAX_TEXT = 64
};

struct Input
{
    uint32_t uid, type;
    uint32_t value[MAX_TEXT];
};

struct Output
{
    uint32_t uid, type, width, height, format, order;
    uint32_t fetchError;
    int isDynamic;
};

struct Program
{
    struct Input inputs[MAX_ITEMS];
    struct Output outputs[MAX_ITEMS];
    uint32_t inputsCount, outputsCount;
    uint32_t failHandle, failDesc, failStart, failPush, failHint, failFlush;
    uint32_t progressTotal, progressBurn;
    int useCache;
};

void program_parse(struct Program* program, const char* data, uint64_t size);

#endif
