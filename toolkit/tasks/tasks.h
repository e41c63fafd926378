// SPDX-License-Identifier: MIT
#pragma once

#include "toolkit/base/observer.h"
#include "toolkit/tasks/jobs.h"
#include "toolkit/tasks/reports.h"

/// @file
/// Does a job in this process, and returns what is to be told of it. A Failure if it cannot be done.
///
/// One at a time: DevIL and the graphics library know one state a process. Hostile files can crash a decoder,
/// so front ends leave jobs with files to a worker process.

namespace umbrixlib::toolkit {

MapReport run(MapJob const& job, Observer& observer);
NormalReport run(NormalJob const& job, Observer& observer);
HeightReport run(HeightJob const& job, Observer& observer);
CurvatureReport run(CurvatureJob const& job, Observer& observer);
BentReport run(BentJob const& job, Observer& observer);
HorizonReport run(HorizonJob const& job, Observer& observer);
RelightReport run(RelightJob const& job, Observer& observer);
ViewReport run(ViewJob const& job, Observer& observer);
ConvertReport run(ConvertJob const& job, Observer& observer);
ExportReport run(ExportJob const& job, Observer& observer);
PackReport run(PackJob const& job, Observer& observer);
InfoReport run(InfoJob const& job, Observer& observer);
CheckReport run(CheckJob const& job, Observer& observer);
StackReport run(StackJob const& job, Observer& observer);
FitReport run(FitJob const& job, Observer& observer);
DevicesReport run(DevicesJob const& job, Observer& observer);
ListReport run(ListJob const& job, Observer& observer);
FolderReport run(FolderJob const& job, Observer& observer);
DecodeReport run(DecodeJob const& job, Observer& observer);

/// A job of any task.
Report run(Job const& job, Observer& observer);

} // namespace umbrixlib::toolkit
