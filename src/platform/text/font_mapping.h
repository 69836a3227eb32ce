// Which installed face shows a font that a document names by its PostScript
// name. Documents come from a desktop whose faces (Helvetica, Arial, PingFang,
// Hiragino, the colour emoji face ...) are not installed here; most have a
// metric-compatible twin that fontconfig knows, a few are mapped by a table of
// our own, and whatever is left falls back to a sans face and says so.
#pragma once

#include <string>

namespace paintdoc {

struct FontFace {
  std::string family;     // installed family, "Nimbus Sans"
  int weight = 400;       // CSS / Pango weight, 100..1000
  bool italic = false;
  // No installed face matched the requested family or its twins: the face is
  // the sans fallback.
  bool fallback = false;

  // "Nimbus Sans Bold Italic": what the face is called when reported.
  std::string displayName() const;
  friend bool operator==(const FontFace&, const FontFace&) = default;
};

// The face that shows `postscriptName`. Answers are cached for the process
// (the installed fonts do not change under a running preview).
FontFace FaceForPostScriptName(const std::string& postscriptName);

// The family words and style of a PostScript name, before any lookup:
// "TimesNewRomanPSMT" -> family "Times New Roman"; "Helvetica-BoldOblique" ->
// "Helvetica", weight 700, italic. Exposed for the tests of the mapping.
FontFace FaceRequestedByName(const std::string& postscriptName);

}  // namespace paintdoc
