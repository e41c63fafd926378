// SPDX-License-Identifier: MIT
#pragma once

#include "devil_fake.h"
#include "layers/nlayers.h"

#include <cstddef>
#include <gtest/gtest.h>
#include <omp.h>

namespace umbrixlib::test {

/// A stack over records of layers, with a stand-in for DevIL.
class NLayersStack : public testing::Test {
protected:
    void SetUp() override
    {
        omp_set_num_threads(omp_get_num_procs());
        DevilFake::instance().serve(1, 1, 24);
    }

    /// A file of @p width x @p height texels whose bytes are counted up from @p start.
    static void provide(char const* name, int width, int height, int bits = 24, int start = 0)
    {
        DevilFake::File file{width, height, bits, {}};
        file.bytes.resize(static_cast<std::size_t>(width) * static_cast<std::size_t>(height) * 3);
        for (std::size_t i = 0; i < file.bytes.size(); ++i) {
            file.bytes[i] = static_cast<unsigned char>(static_cast<std::size_t>(start) + i);
        }
        DevilFake::instance().files[name] = file;
    }

    /// Adds a record, then the layer.
    void add(char const* file)
    {
        records_.Add({});
        stack_.AddLayer(file);
    }
    void add_normal(char const* file)
    {
        records_.Add({});
        records_.tail->data.regenerate = true;
        stack_.AddNormalLayer(file);
    }

    /// No layers, no records.
    void start_afresh()
    {
        stack_.Clear();
        while (records_.count > 0) {
            records_.RemoveFirst();
        }
    }

    float* heights(int index) { return stack_.heights.Get(index); }

    static float height_of(DevilFake::File const& file, int x, int y)
    {
        unsigned char const* const colour = file.bytes.data() + 3 * (y * file.width + x);
        return static_cast<float>((colour[0] + colour[1] + colour[2]) / 3 / 255.0);
    }

    LinkedList<n_layer> records_;
    NLayers stack_{&records_};
};

} // namespace umbrixlib::test
