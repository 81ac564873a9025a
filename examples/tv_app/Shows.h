#pragma once

#include <string>
#include <vector>

#include "Scene.h"

namespace tv {

/// One show of the programme. `id` is its name in links and events.
struct Show {
  std::string id;
  std::string title;
  std::string genre;
  std::string facts;  ///< Year, length, age.
  std::string story;
  float watched = 0.0F;  ///< From 0 to 1.
  Scene scene;
};

/// A row of the first screen.
struct Shelf {
  std::string title;
  std::vector<const Show*> shows;
};

/// All shelves, from the top. Never destroyed.
const std::vector<Shelf>& shelves();

/// The show of that id, or null.
const Show* findShow(const std::string& id);

}  // namespace tv
