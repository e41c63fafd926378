// SPDX-License-Identifier: MIT
#pragma once

#include "call_log.h"
#include "devil_fake.h"
#include "files/umbrix_file_gpu.h"
#include "graphics_fake.h"
#include "layer_run.h"
#include "layers/nlayers.h"

#include <string>
#include <vector>

namespace umbrixlib::test {

/// Runs of UmbrixFile_GPU, with stand-ins for DevIL, the kernels and the graphics library.
class UmbrixFileGpuCalls : public umbrixlib::test::LayerRun {
protected:
    UmbrixFileGpuCalls()
    {
        GraphicsFake::instance().reset();
        GraphicsFake::instance().status = &status_;
        GraphicsFake::instance().progress = &progress_;
    }
    ~UmbrixFileGpuCalls() override
    {
        EXPECT_EQ(GraphicsFake::instance().faults, std::vector<std::string>());
        GraphicsFake::instance().reset();
    }

    bool run(umbrix_options& options, std::string const& output = "out.tga", NLayers* stack = nullptr)
    {
        CallLog::instance().clear();
        status_ = "before";
        progress_ = 99;
        return UmbrixFile_GPU(gpu_, "in.png", output, options, &layers_, stack, &status_, &progress_);
    }

    /// Serves an image of the given shape under the name of the input.
    static std::vector<unsigned char> serve(int width, int height, int bits)
    {
        DevilFake::instance().serve(width, height, bits);
        return DevilFake::instance().served;
    }

    static void release(umbrix_options& options)
    {
        delete[] options.height_copy;
        if (options.keep_buffers) {
            delete[] options.ao_map;
            delete[] options.normal_map;
        }
    }

    GPU_opt gpu_{true, 3, 17};
};

} // namespace umbrixlib::test
