// SPDX-License-Identifier: MIT
#include "capi/pictures_internal.h"
#include "toolkit/tasks/makers.h"

#include <memory>
#include <utility>

using namespace umbrix_capi;
using namespace umbrixlib::toolkit;

umbrix_code umbrix_check(umbrix_context* context, umbrix_picture const* picture,
                         umbrix_settings const* settings, int green, umbrix_findings** findings,
                         umbrix_picture* mended)
{
    return work(context, picture, [&](CallObserver& observer) {
        require(findings, "findings");
        DecodedFile file = decoded(picture, "picture");
        if (mended != nullptr && mended->texels != nullptr) {
            throw WrongArgument("mended is over memory, and its samples are not known before");
        }
        Settings const all = settings_of(settings);
        CheckJob job;
        job.files = {picture->name, {}, 0.0};
        if (known_kind(*picture) != PictureKind::kUnknown) {
            job.kind = known_kind(*picture);
        }
        if (green != 0) {
            job.normal_y = green > 0 ? NormalY::kUp : NormalY::kDown;
        }
        job.h_tile = all.tile && all.h_tile;
        job.v_tile = all.tile && all.v_tile;
        CheckMade made = make(job, DecodedImage(std::move(file)), mended != nullptr, observer);
        auto found = std::make_unique<umbrix_findings>();
        found->kind = made.report.taken_for;
        found->all = std::move(made.report.findings);
        if (mended != nullptr) {
            give(std::move(made.mended), picture->name, *mended);
        }
        *findings = found.release();
    });
}

umbrix_kind umbrix_findings_kind(umbrix_findings const* findings)
{
    return findings != nullptr ? static_cast<umbrix_kind>(findings->kind) : UMBRIX_UNKNOWN;
}

size_t umbrix_findings_count(umbrix_findings const* findings)
{
    return findings != nullptr ? findings->all.size() : 0;
}

umbrix_code umbrix_findings_at(umbrix_findings const* findings, size_t index, umbrix_finding* finding)
{
    if (findings == nullptr || index >= findings->all.size()) {
        return UMBRIX_WRONG_ARGUMENT;
    }
    Finding const& found = findings->all[index];
    umbrix_finding const filled{0,
                                found.name.c_str(),
                                found.text.c_str(),
                                found.fix.c_str(),
                                static_cast<double>(found.texels),
                                found.strength,
                                found.first ? found.first->x : -1,
                                found.first ? found.first->y : -1};
    return fill_record(finding, filled) ? UMBRIX_OK : UMBRIX_WRONG_ARGUMENT;
}

void umbrix_findings_free(umbrix_findings* findings)
{
    delete findings;
}
