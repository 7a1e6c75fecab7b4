// Drawing a window of an endless repeated design: the core of
// ostrel-repeat-view, shared with its tests.
#pragma once

#include <Ostrel.h>

#include <string>
#include <vector>

namespace ostrel_examples {

// One layer of a design tile: a grey layer is the coverage of a paint
// colour (drawn through a ramp from paper to full ink), a colour layer
// carries its own coverage in its alpha bytes.
struct Layer {
  bool grey = true;
  std::vector<unsigned char> l08;  // grey layers, tile-sized
  std::vector<unsigned int> trc;   // colour layers, tile-sized
  unsigned int colour = 0;         // paint colour of a grey layer
  unsigned char opacity = 255;
};

// A design tile: layers composited bottom to top over the backdrop.
struct Design {
  unsigned int width = 0;
  unsigned int height = 0;
  std::vector<Layer> layers;
};

// The window onto the endless design. Output pixel (x, y) shows view
// position (x + scrollX, y + scrollY).
struct ViewSettings {
  _EDropKind dropKind = eDropVertical;  // eDropNone is drawn as a straight repeat
  unsigned int drop = 0;                // file pixels, below the tile size
  double zoom = 1.0;                    // view pixels per file pixel
  int scrollX = 0;
  int scrollY = 0;
  unsigned int width = 0;
  unsigned int height = 0;
  bool exact = false;      // exact blend arithmetic instead of the fast form
  unsigned int bands = 0;  // row bands on the worker pool; 0 = one per processor
  unsigned int backdropSquare = 8;
  unsigned int backdropColour1 = 0xFFE8E8E8u;
  unsigned int backdropColour2 = 0xFFC8C8C8u;
};

// The built-in design: a 120 x 90 tile of three layers (two grey, one colour).
Design SyntheticDesign();

// Checks the settings against the design; returns an empty string or a
// message saying what is wrong. A drop must lie below the tile's height
// (vertical) or width (horizontal); eDropNone ignores it.
std::string CheckView(const Design &design, const ViewSettings &view);

// The drop kind actually used (a straight repeat for eDropNone) and its drop
// (0 for eDropNone).
_EDropKind EffectiveDropKind(const ViewSettings &view);
unsigned int EffectiveDrop(const ViewSettings &view);

// Draws the view (width x height TRC pixels) of a checked design and view.
std::vector<unsigned int> RenderView(const Design &design, const ViewSettings &view);

}  // namespace ostrel_examples
