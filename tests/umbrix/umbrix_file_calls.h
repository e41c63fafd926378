// SPDX-License-Identifier: MIT
#pragma once

#include "call_log.h"
#include "devil_fake.h"
#include "files/umbrix_file.h"
#include "kernels_fake.h"
#include "umbrix_test_options.h"

#include <gtest/gtest.h>
#include <omp.h>
#include <string>

namespace umbrixlib::test {

/// Runs of UmbrixFile without layers, with stand-ins for DevIL and the kernels.
class UmbrixFileCalls : public testing::Test {
protected:
    void SetUp() override
    {
        omp_set_dynamic(0);
        omp_set_num_threads(omp_get_num_procs());
        DevilFake::instance().serve(4, 4, 32);
        KernelsFake::instance().status = &status_;
        KernelsFake::instance().progress = &progress_;
    }

    bool run(umbrix_options& options, std::string const& output = "out.tga")
    {
        CallLog::instance().clear();
        status_ = "before";
        progress_ = 99;
        LinkedList<n_layer> layers;
        return UmbrixFile("in.png", output, options, &layers, nullptr, &status_, &progress_);
    }

    static void release(umbrix_options& options)
    {
        if (options.keep_buffers) {
            delete[] options.ao_map;
            delete[] options.normal_map;
            delete[] options.height_copy;
        }
    }

    std::string status_;
    int progress_ = 0;
};

} // namespace umbrixlib::test
