#pragma once

namespace fernwick::lab {

/// The style sheet of the page: for a screen of any width, light or dark, and for paper.
extern const char ReportStyle[];

}  // namespace fernwick::lab
