// SPDX-License-Identifier: MIT
#include "boundary/texture_kernels.h"
#include "common/exp_table.h"

void GenerateExp(float sigma, float* table)
{
    umbrixlib::detail::exp_table(sigma, table, 0, 1);
}

void GenerateExp(float sigma, float* table, int thread, int threads)
{
    umbrixlib::detail::exp_table(sigma, table, thread, threads);
}
