#include "testprogram.h"

#include <stdio.h>
#include <stdlib.h>
#include <string.h>

static void default_program(struct Program* program)
{
    static const uint8_t formats[] = {0,  4, 8, 12, 16, 20, 28, 64, 68, 76, 80, 84,
                                      92, 1, 5, 9,  13, 17, 21, 25, 2,  3,  7,  11};
    for (uint32_t i = 0; i < sizeof formats; ++i) {
        struct Output* output = &program->outputs[program->outputsCount++];
        output->uid = 100 + i;
        output->type = VELLOR_TYPE_IMAGE;
        output->width = output->height = 64;
        output->format = formats[i];
        output->order = VELLOR_ORDER_RGBA;
    }
}

static void parse_input(struct Program* program, const char* line)
{
    struct Input* input = &program->inputs[program->inputsCount];
    int used = 0;
    if (program->inputsCount == MAX_ITEMS ||
        sscanf(line, "input %u %u%n", &input->uid, &input->type, &used) < 2)
        return;
    for (int i = 0; i < MAX_TEXT - 1; ++i) {
        int step = 0;
        line += used;
        if (sscanf(line, "%x%n", &input->value[i], &step) < 1)
            break;
        used = step;
    }
    ++program->inputsCount;
}

static void parse_output(struct Program* program, const char* line)
{
    struct Output* output = &program->outputs[program->outputsCount];
    output->order = VELLOR_ORDER_RGBA;
    if (program->outputsCount < MAX_ITEMS &&
        sscanf(line, "output %u %u %u %u %u %u", &output->uid, &output->type, &output->width, &output->height,
               &output->format, &output->order) >= 2)
        ++program->outputsCount;
}

static struct Output* find_output(struct Program* program, uint32_t uid)
{
    for (uint32_t i = 0; i < program->outputsCount; ++i)
        if (program->outputs[i].uid == uid)
            return &program->outputs[i];
    return NULL;
}

static void parse_failure(struct Program* program, const char* line)
{
    uint32_t uid, code;
    if (sscanf(line, "fail fetch %u %u", &uid, &code) == 2 && find_output(program, uid))
        find_output(program, uid)->fetchError = code;
    sscanf(line, "fail handle %u", &program->failHandle);
    sscanf(line, "fail desc %u", &program->failDesc);
    sscanf(line, "fail start %u", &program->failStart);
    sscanf(line, "fail push %u", &program->failPush);
    sscanf(line, "fail hint %u", &program->failHint);
    sscanf(line, "fail flush %u", &program->failFlush);
}

static void parse_line(struct Program* program, const char* line)
{
    uint32_t uid;
    parse_input(program, line);
    parse_output(program, line);
    parse_failure(program, line);
    sscanf(line, "progress %u %u", &program->progressTotal, &program->progressBurn);
    if (strcmp(line, "cache") == 0)
        program->useCache = 1;
    if (sscanf(line, "dynamic %u", &uid) == 1 && find_output(program, uid))
        find_output(program, uid)->isDynamic = 1;
}

void program_parse(struct Program* program, const char* data, uint64_t size)
{
    static const char mark[] = "testengine\n";
    memset(program, 0, sizeof *program);
    if (size < sizeof mark - 1 || memcmp(data, mark, sizeof mark - 1) != 0) {
        default_program(program);
        return;
    }
    char* text = calloc(1, size + 1);
    memcpy(text, data, size);
    for (char* line = strtok(text, "\n"); line; line = strtok(NULL, "\n"))
        parse_line(program, line);
    free(text);
}
