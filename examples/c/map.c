/* SPDX-License-Identifier: MIT */
/* The interface for C: an Umbrix map of a height map, with a relief of its own.
 *   map HEIGHTS RELIEF MAP     map rock_height.png 0.05 rock_Umbrix.png */
#include <stdio.h>
#include <umbrix.h>

static int show(void* user, char const* stage, double share)
{
    (void)user;
    printf("\r%-16s %3.0f %%", stage, 100 * share);
    fflush(stdout);
    return 1; /* go on */
}

static int make(umbrix_context* context, umbrix_settings* settings, char const* const* arguments)
{
    umbrix_picture *heights = NULL, *map = NULL;
    int const made = umbrix_settings_set(context, settings, "relief", arguments[2]) == UMBRIX_OK &&
                     umbrix_picture_read(context, arguments[1], 0, &heights) == UMBRIX_OK &&
                     umbrix_picture_new(context, &map) == UMBRIX_OK &&
                     umbrix_make_map(context, heights, settings, map) == UMBRIX_OK &&
                     umbrix_picture_write(context, map, arguments[3], NULL) == UMBRIX_OK;
    umbrix_picture_free(map);
    umbrix_picture_free(heights);
    return made;
}

int main(int count, char** arguments)
{
    umbrix_context* const context = umbrix_context_new();
    umbrix_settings* const settings = umbrix_settings_new();
    int const asked = count == 4 && context != NULL && settings != NULL;
    umbrix_on_progress(context, show, NULL);
    int const made = asked && make(context, settings, (char const* const*)arguments);
    umbrix_error error = {sizeof error, UMBRIX_OK, "", ""};
    umbrix_last_error(context, &error);
    printf("\n");
    if (!made) {
        fprintf(stderr, "%s\n", asked ? error.sentence : "usage: map HEIGHTS RELIEF MAP");
    }
    umbrix_settings_free(settings);
    umbrix_context_free(context);
    return made ? 0 : 1;
}
