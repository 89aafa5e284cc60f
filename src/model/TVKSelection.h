#pragma once

// What the user is working on, in the model's numbering: the keyset being edited, its layer,
// and one control (model-data group and index) or one display (model-data display group and
// index) of that layer. The model data keeps the only copy; the surface pictures' numbering is
// derived from it by the surface constants wherever a picture needs it.
struct TVKSelection
{
    int keyset = 0;
    int layer = 0;
    int group = 0;
    int control = 0;
    int displayGroup = 0;
    int display = 0;
    // A display is selected rather than the control.
    bool displaySelected = false;

    bool operator==(const TVKSelection&) const = default;
};
