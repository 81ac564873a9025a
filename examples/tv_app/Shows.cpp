#include "Shows.h"

#include <algorithm>

namespace tv {
namespace {

const std::vector<Show>& shows() {
  static const std::vector<Show> all = {
      {"night-train",
       "Night Train",
       "Thriller",
       "2026  ·  8 episodes  ·  12+",
       "Nine strangers, one sleeper carriage and a border that closes at dawn. Somebody on board has a ticket for "
       "a seat that does not exist.",
       0.62F,
       {0x080D29, 0x453D78, 0xFFE3A8, 0x05050F, Land::Mountains, Motif::Train, {0.78F, 0.24F, 0.07F}, true, 11}},
      {"harbour-lights",
       "Harbour Lights",
       "Drama",
       "2025  ·  2 seasons  ·  6+",
       "The ferry is sold, the crew stays. A family on the coast learns to run a harbour without ships.",
       0.35F,
       {0x291C4C, 0xFA875C, 0xFFD18C, 0x120D21, Land::Sea, Motif::Lighthouse, {0.60F, 0.50F, 0.07F}, false, 5}},
      {"north-wind",
       "North Wind",
       "Adventure",
       "2026  ·  1 h 52 min  ·  12+",
       "Two sledges, forty days and a weather station that has stopped answering.",
       0.1F,
       {0x050D1F, 0x0F404F, 0x73FFBD, 0x050D17, Land::Mountains, Motif::Aurora, {0.0F, 0.0F, 0.0F}, true, 23}},
      {"paper-city",
       "Paper City",
       "Animation",
       "2024  ·  12 episodes  ·  all ages",
       "Every night the city is folded up, and every morning one street is missing.",
       0.0F,
       {0x40296E, 0xF79EA1, 0xFFDB9E, 0x21143B, Land::City, Motif::None, {0.66F, 0.42F, 0.15F}, false, 31}},
      {"quiet-orbit",
       "The Quiet Orbit",
       "Science fiction",
       "2025  ·  2 h 08 min  ·  12+",
       "The last radio operator of a moon base hears her own voice, eleven minutes early.",
       0.0F,
       {0x03030D, 0x211A4A, 0xFFAD7A, 0x0D0A1A, Land::Dunes, Motif::Planet, {0.72F, 0.36F, 0.24F}, true, 47}},
      {"salt-road",
       "Salt Road",
       "Documentary",
       "2023  ·  4 parts  ·  all ages",
       "With the caravans of the high desert, from well to well, for the price of salt.",
       0.0F,
       {0x4778A8, 0xFFD191, 0xFFF2CC, 0x73381F, Land::Dunes, Motif::None, {0.68F, 0.34F, 0.06F}, false, 53}},
      {"deep-green",
       "Deep Green",
       "Nature",
       "2026  ·  6 parts  ·  all ages",
       "A year in the oldest forest of the continent, filmed from the roots to the crowns.",
       0.0F,
       {0x4C8573, 0xE0EBB2, 0xFFFFD9, 0x051A14, Land::Forest, Motif::None, {0.64F, 0.30F, 0.08F}, false, 61}},
      {"tide-table",
       "Tide Table",
       "Romance",
       "2024  ·  1 h 41 min  ·  6+",
       "They meet twice a day, whenever the causeway is dry.",
       0.0F,
       {0x1F3873, 0xFFA880, 0xFFE0AD, 0x0D142B, Land::Sea, Motif::None, {0.68F, 0.46F, 0.11F}, false, 71}},
      {"snow-line",
       "Snow Line",
       "Crime",
       "2025  ·  6 episodes  ·  16+",
       "Above the last lift station a detective finds tracks that only lead upwards.",
       0.0F,
       {0x38578F, 0xF2C9C7, 0xFFEDE0, 0x141F38, Land::Mountains, Motif::None, {0.70F, 0.33F, 0.05F}, false, 83}},
      {"eleven-floors",
       "Eleven Floors",
       "Comedy",
       "2026  ·  10 episodes  ·  6+",
       "One lift, one caretaker, eleven floors of neighbours who all want the roof.",
       0.0F,
       {0x080F2B, 0x294C80, 0xFFCC73, 0x050814, Land::City, Motif::None, {0.80F, 0.22F, 0.05F}, true, 97}},
      {"first-light",
       "First Light",
       "Documentary",
       "2026  ·  4 parts  ·  all ages",
       "Four mountains, four seasons, one sunrise each, with the people who climb in the dark to see the day begin.",
       0.0F,
       {0x33336B, 0xFFB27A, 0xFFE6A8, 0x291429, Land::Mountains, Motif::None, {0.70F, 0.37F, 0.08F}, false, 131}},
      {"low-season",
       "Low Season",
       "Comedy",
       "2023  ·  1 h 35 min  ·  all ages",
       "A hotel, no guests and a wedding that was never cancelled.",
       0.0F,
       {0x6B4280, 0xFFC285, 0xFFEDBD, 0x1A2429, Land::Hills, Motif::None, {0.60F, 0.42F, 0.09F}, false, 101}},
  };
  return all;
}

std::vector<const Show*> pick(const std::vector<std::string>& ids) {
  std::vector<const Show*> picked;
  picked.reserve(ids.size());
  for (const std::string& id : ids) {
    picked.push_back(findShow(id));
  }
  return picked;
}

}  // namespace

const Show* findShow(const std::string& id) {
  const auto found = std::find_if(shows().begin(), shows().end(), [&](const Show& show) { return show.id == id; });
  return found != shows().end() ? &*found : nullptr;
}

const std::vector<Shelf>& shelves() {
  static const std::vector<Shelf> all = {
      {"Continue watching", pick({"night-train", "harbour-lights", "north-wind"})},
      {"New this week",
       pick({"quiet-orbit", "eleven-floors", "deep-green", "north-wind", "snow-line", "paper-city", "tide-table"})},
      {"For a long evening",
       pick({"first-light", "salt-road", "low-season", "harbour-lights", "tide-table", "night-train", "deep-green"})},
  };
  return all;
}

}  // namespace tv
