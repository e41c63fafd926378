// SPDX-License-Identifier: MIT
#pragma once

#include "common/export.h"
#include "foundation/list.h"
#include "foundation/n_layer.h"
#include "layers/nlayers.h"
#include "worklist/umbrix_data.h"

#include <string>

inline namespace umbrix_v0 {

/// One job. A copy has strings and `layers` of its own and shares the object behind `NLayers` without owning
/// it.
struct umbrix_node : umbrix_data {
    std::string filename;             ///< Source, a file or a folder.
    std::string search_str;           ///< Pattern of the files, for a folder.
    LinkedList<n_layer> layers;       ///< Descriptions of the layers.
    class NLayers* NLayers = nullptr; ///< Optional stack over `layers`; the list's.
};

/// Queue of jobs for a front end, which reads them back and makes the calls: nothing here runs a job.
///
/// Indices count from 0. Errors: none are reported; an index that is no job's changes nothing, and what is
/// read there is zero, false, empty or null.
///
/// Ownership: the list owns its jobs, their strings and layers, and the objects behind their `NLayers`.
///
/// Threads: one at a time. Access is linear in the index.
class UMBRIX_API umbrix_list {
public:
    umbrix_list() = default;
    /// Deletes the jobs' `NLayers` objects, then the jobs.
    ~umbrix_list();
    umbrix_list(umbrix_list const&) = delete;
    umbrix_list& operator=(umbrix_list const&) = delete;

    /// Appends a job without layers, `NLayers` null, the two flags without accessors false. Always true. Mind
    /// the order: `b_radius` comes right after `radius`, `blend_height` and `UmbrixMode` come last.
    ///
    /// Contract: the four limits keep their low byte, so 300 is stored as 44; a limit of 255 would be
    /// expected. Test: UmbrixList.LimitsKeepTheirLowByte
    bool add_item(enum calc_type calc_type, std::string filename, std::string search_str, bool multi_thread,
                  bool quiet, bool preserve, bool no_normal, int rays, float radius, float b_radius,
                  float h_scale, float alpha_limit, float theta_limit, float contrast, float h_contrast,
                  float brightness, float h_brightness, float smooth, float h_smooth, int max, int h_max,
                  int min, int h_min, bool tile, bool h_tile, bool v_tile, bool height_map,
                  bool generate_normal, float n_scale, float gaussian, float L_Detail, int mode,
                  bool blend_height, Modes UmbrixMode);
    /// Deletes the job at @p index and its `NLayers` object.
    ///
    /// Contract: a negative index removes the first job and leaves its object alone, which is then nobody's;
    /// no change would be expected. Test: UmbrixList.ANegativeIndexRemovesTheFirstJobWithoutItsStack
    void remove_item(int index);

    /// Number of jobs.
    int get_size();
    /// A copy of the plain part.
    umbrix_data get_data(int index);
    /// A copy of the whole job, which does not own the object behind `NLayers`.
    umbrix_node get_node(int index);

    /// A deep copy of the layers.
    LinkedList<n_layer> get_layers(int index);
    /// The job's own layers, the list's; null out of range.
    LinkedList<n_layer>* get_layers_ptr(int index);
    /// Gives the job a copy of @p layers.
    ///
    /// Contract: the layers that it had are let go, not released, as `LinkedList` assigns; they would be
    /// expected to end here. Who looks at them may go on. Test: UmbrixList.SetLayersLetsGoOfTheOldOnes
    void set_layers(int index, LinkedList<n_layer> layers);

    /// The job's stack object; null if it has none.
    NLayers* get_NLayers(int index);
    /// Hands @p layers over to the list: an object made with new, or null for none.
    ///
    /// Contract: the object that the job had stays with the caller, undeleted; the list would be expected to
    /// delete what it owns. Test: UmbrixList.TheStackThatIsReplacedStaysWithTheCaller
    void set_NLayers(int index, NLayers* layers);

    /// Replaces all jobs by those of a list file. Each gets a new `NLayers` over its layers.
    /// @return False if the file cannot be opened or has another version, which an error box tells; the list
    ///         is then empty. True otherwise, whatever the file holds.
    ///
    /// Contract: the jobs so far go first, even if the file turns out useless. One would expect them to stay.
    /// Test: UmbrixListFile.AFileThatDoesNotOpenOrFitEmptiesTheList
    ///
    /// Contract: nothing in the file is checked, and a file that ends early is no error: jobs keep the
    /// default values for what is missing. A failure is expected. Front ends check files themselves. Test:
    /// UmbrixListFile.AFileThatEndsEarlyLeavesTheDefaults
    ///
    /// Contract: the file's numbers of jobs and of layers are taken at their word, also beyond its end, up to
    /// 100,000; as many as are there would be expected. Test:
    /// UmbrixListDamage.ACountBeyondTheFileIsTakenAtItsWord
    ///
    /// Contract: a text that the end of the file cuts in the middle is left out whole; the characters that
    /// are there would be expected. Test: UmbrixListDamage.ATextCutInTheMiddleIsLeftOut
    ///
    /// Contract: a text ends at its first zero byte, though it is saved whole. Test:
    /// UmbrixListFile.ATextIsSavedWholeAndReadUpToItsFirstZero
    bool load_list(std::string file);
    /// Writes all jobs into a list file, which it replaces. What stands behind `NLayers` is not saved.
    /// @return False if the file cannot be opened.
    ///
    /// Contract: true whatever became of the writing; a full disk would be expected to show. Test:
    /// UmbrixListFile.SavingLooksAtTheOpeningOnly
    bool save_list(std::string file);

    void set_filename(int index, std::string filename);     ///< Source, a file or a folder.
    std::string get_filename(int index);                    ///< Empty out of range.
    void set_search_str(int index, std::string search_str); ///< Pattern of the files, for a folder.
    std::string get_search_str(int index);                  ///< Empty out of range.

#define UMBRIX_ACCESSORS(type, name, offset)                                                                 \
    void set_##name(int index, type value);                                                                  \
    type get_##name(int index);
#define UMBRIX_NO_ACCESSORS(type, name, offset)
    /// `set_<field>(int, T)` stores a value, `T get_<field>(int)` reads it: a pair for each field of
    /// `umbrix_data`, where its meaning stands, from `set_calc_type` and `get_calc_type` to `set_mode` and
    /// `get_mode`. Out of range a setter does nothing and a getter gives 0 or false.
    UMBRIX_DATA_FIELDS(UMBRIX_ACCESSORS, UMBRIX_NO_ACCESSORS)
#undef UMBRIX_ACCESSORS
#undef UMBRIX_NO_ACCESSORS

    LinkedList<umbrix_node> items; ///< The jobs.

private:
    umbrix_node* item_at(int index);
    void remove_all();
};

} // namespace umbrix_v0
