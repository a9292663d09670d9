/*
 * What the project's own CPU engine reads in VellorHardResources::reserved0: three 32-bit words, 0 in any of
 * them being the engine's choice. No pixel follows from them.
 */
#ifndef VELLOR_CPUENGINE_H
#define VELLOR_CPUENGINE_H

enum VellorCpuWord
{
    VELLOR_CPU_WORD_THREADS =
        0, /* threads of a generation, the caller's among them; 0: one for each processor */
    VELLOR_CPU_WORD_CHUNK_ROWS = 1, /* rows that a thread takes at a time; 0: by measured time */
    VELLOR_CPU_WORD_FLAGS = 2,
    VELLOR_CPU_WORD_COUNT = 3
};

enum VellorCpuFlag
{
    VELLOR_CPU_NO_FUSION = 1, /* every point node writes a whole picture */
    /* Results are let go of as soon as the running generation needs them no more, and their memory is used
       again: for hosts that compute once. */
    VELLOR_CPU_COMPUTE_ONCE = 2,
    /* From this bit on, eight bits: the highest instruction set that kernels may use. It counts for the
       process, from the handle's next start on. */
    VELLOR_CPU_INSTRUCTION_SET_SHIFT = 8
};

enum VellorCpuInstructionSet
{
    VELLOR_CPU_BEST = 0, /* that the machine has */
    VELLOR_CPU_SSSE3 = 1,
    VELLOR_CPU_AVX2 = 2,
    VELLOR_CPU_AVX512 = 3
};

#endif
