// SPDX-License-Identifier: MIT
#pragma once

#include "capi/umbrix.h"
#include "toolkit/pictures/decoded_image.h"
#include "toolkit/settings/defaults.h"
#include "toolkit/settings/stack_description.h"
#include "toolkit/tasks/reports.h"

#include <deque>
#include <string>
#include <vector>

/// @file
/// What the handles of the interface are.

struct umbrix_context {
    umbrix_code code = UMBRIX_OK;
    std::string sentence;
    std::string remedy;
    std::string answer; ///< A text that the last call pointed its caller to.
    umbrix_progress progress = nullptr;
    void* progress_user = nullptr;
    umbrix_note note = nullptr;
    void* note_user = nullptr;
};

struct umbrix_settings {
    umbrixlib::toolkit::Settings values = umbrixlib::toolkit::kDefaults;
};

/// Texels of its own, or the caller's.
struct umbrix_picture {
    std::string name = "picture";
    umbrixlib::toolkit::DecodedFile own{}; ///< Of no texels if they are the caller's, or there are none.
    void const* texels = nullptr;          ///< The caller's.
    void* result = nullptr;                ///< The same if they are to be written.
    umbrix_layout layout{};                ///< Of the caller's; its kind and sizes are those of both.
    umbrixlib::toolkit::Attributes attributes{};
    std::string attribute_text{};
};

struct umbrix_findings {
    umbrixlib::toolkit::PictureKind kind{};
    umbrixlib::toolkit::Findings all;
};

/// Layers stay where they are while others are added.
struct umbrix_stack {
    struct Layer {
        umbrixlib::toolkit::StackLayer description;
        umbrixlib::toolkit::DecodedFile picture;
    };

    double normal_scale = 1.0;
    std::deque<Layer> layers;
};
