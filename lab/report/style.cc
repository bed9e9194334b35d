#include "lab/report/style.h"

namespace fernwick::lab {

// Colours of tones (t0 to t9) have a contrast of at least 4.5 with white text and 3 with both
// backgrounds. Shades (s0 to s5) go from the background to the text, so that they are in order in
// grey too. Details are open on paper.
const char ReportStyle[] = R"(
:root { color-scheme: light dark;
  --back: #ffffff; --card: #f5f7fa; --line: #d3dae2; --text: #1a1f26; --soft: #525c68; --link: #0b53c1;
  --alert: #a4161a; --edge: #8a94a0;
  --s0: #dbe9fd; --s1: #abcdfa; --s2: #74aaf3; --s3: #2a6fce; --s4: #1b54a6; --s5: #10356f; --sx: #c9ced5;
  --dark: #10151b; --pale: #ffffff; --stripe: #8a94a0; }
@media screen and (prefers-color-scheme: dark) { :root {
  --back: #0f141a; --card: #181f28; --line: #313b47; --text: #e7ecf2; --soft: #a4afbb; --link: #86b7ff;
  --alert: #ff9b93; --edge: #6d7885;
  --s0: #14305a; --s1: #1c4684; --s2: #2765b8; --s3: #5f9cec; --s4: #96c1f8; --s5: #d3e5fd; --sx: #4a545f;
  --dark: #ffffff; --pale: #0b0f14; --stripe: #7d8894; } }
* { box-sizing: border-box; }
body { margin: 0 auto; max-width: 76rem; padding: 1.5rem clamp(1rem, 4vw, 2.5rem) 4rem; background: var(--back);
  color: var(--text); font: 1rem/1.5 system-ui, -apple-system, "Segoe UI", "Noto Sans", "DejaVu Sans", sans-serif; }
h1 { margin: 0; font-size: clamp(1.6rem, 4vw, 2.2rem); line-height: 1.2; letter-spacing: -0.01em; }
h2 { margin: 3rem 0 0.75rem; padding-top: 1rem; border-top: 1px solid var(--line); font-size: 1.35rem; line-height: 1.3; }
h3 { margin: 1.5rem 0 0.5rem; font-size: 1.05rem; overflow-wrap: anywhere; }
h3::first-letter { text-transform: uppercase; }
small, .lead, .soft, .more, caption { color: var(--soft); }
small { font-weight: normal; font-size: 0.85em; }
p { margin: 0.5rem 0; max-width: 46rem; }
.lead { font-size: 1.1rem; margin-bottom: 1rem; }
a { color: var(--link); text-underline-offset: 0.15em; }
a:focus-visible, summary:focus-visible, .scroll:focus-visible { outline: 3px solid var(--link); outline-offset: 2px; }
:target { scroll-margin-top: 1rem; outline: 2px solid var(--link); outline-offset: 2px; }
section:target, h2:target { outline: none; }
code { font-family: ui-monospace, "DejaVu Sans Mono", Menlo, Consolas, monospace; font-size: 0.9em; overflow-wrap: anywhere; }
a, code, td, th, li, caption { unicode-bidi: isolate; }
nav ul, .tiles, .legend, .alerts { list-style: none; margin: 0; padding: 0; }
nav ul { display: flex; flex-wrap: wrap; gap: 0.25rem 1.25rem; padding: 0.5rem 0; }
.tiles { display: grid; grid-template-columns: repeat(auto-fill, minmax(8.5rem, 1fr)); gap: 0.75rem; margin: 1rem 0 1.5rem; }
.tiles li { border: 1px solid var(--line); border-radius: 0.6rem; background: var(--card); padding: 0.75rem 1rem; line-height: 1.3; }
.tiles strong { display: block; font-size: 1.8rem; line-height: 1.2; font-variant-numeric: tabular-nums; }
.tiles a { text-decoration-thickness: 1px; }
.tiles span { color: var(--soft); font-size: 0.9rem; }
.alerts li { padding: 0.35rem 0 0.35rem 0.9rem; border-left: 4px solid var(--alert); margin: 0.35rem 0; }
.alerts li.mild { border-left-color: var(--edge); }
.alerts strong { font-variant-numeric: tabular-nums; }
.legend { display: flex; flex-wrap: wrap; gap: 0.25rem 1.5rem; margin: 0.5rem 0 1rem; }
.grid { display: grid; grid-template-columns: repeat(auto-fill, minmax(min(26rem, 100%), 1fr)); gap: 1rem; }
article { border: 1px solid var(--line); border-radius: 0.6rem; padding: 0 1rem 1rem; min-width: 0; }
table { border-collapse: collapse; width: 100%; margin: 0.75rem 0; font-size: 0.95rem; }
caption { position: absolute; clip-path: inset(50%); width: 1px; height: 1px; overflow: hidden; white-space: nowrap; }
th, td { text-align: left; vertical-align: top; padding: 0.35rem 0.75rem 0.35rem 0; border-bottom: 1px solid var(--line);
  overflow-wrap: anywhere; }
th { font-weight: 600; }
tbody th { font-weight: normal; }
tbody th[scope=rowgroup] { font-weight: 600; padding-top: 1rem; background: none; }
thead th { color: var(--soft); font-size: 0.85rem; overflow-wrap: normal; }
.n { text-align: right; font-variant-numeric: tabular-nums; white-space: nowrap; overflow-wrap: normal; }
.n + :not(.n) { padding-left: 0.75rem; }
.at { white-space: nowrap; }
.scroll { overflow-x: auto; }
.scroll th { overflow-wrap: normal; }
#computers table { table-layout: fixed; }
#computers thead th:first-child { width: 28%; } #computers thead th:nth-child(2) { width: 40%; }
details { margin: 0.25rem 0; }
summary { cursor: pointer; color: var(--soft); }
td details, td .more { margin: 0; }
.names { margin: 0; padding: 0; list-style: none; columns: 14rem auto; }
.names li { overflow-wrap: anywhere; break-inside: avoid; }
.bars { display: block; margin: 0.75rem 0; overflow: hidden; border-radius: 0.3rem; }
.bars rect { stroke: var(--back); stroke-width: 1.5px; }
.bars text { fill: var(--text); font-size: 0.85rem; }
.bars .on { text-anchor: middle; fill: #ffffff; font-weight: 600; paint-order: stroke; stroke-width: 4px; stroke-linejoin: round; }
.swatch { vertical-align: -0.15em; border-radius: 3px; border: 1px solid var(--edge); }
.defs { position: absolute; }
pattern path { fill: none; stroke: #ffffff; stroke-opacity: 0.5; stroke-width: 1.5px; }
.t0 { fill: #1d64d8; } .t1 { fill: #19764f; } .t2 { fill: #ad5500; } .t3 { fill: #7e4cd6; } .t4 { fill: #69717d; }
.t5 { fill: #746500; } .t6 { fill: #ad2f78; } .t7 { fill: #4a6784; } .t8 { fill: #c22727; } .t9 { fill: #62666d; }
.bars .t0 { stroke: #1d64d8; } .bars .t1 { stroke: #19764f; } .bars .t2 { stroke: #ad5500; } .bars .t3 { stroke: #7e4cd6; }
.bars .t4 { stroke: #69717d; } .bars .t5 { stroke: #746500; } .bars .t6 { stroke: #ad2f78; } .bars .t7 { stroke: #4a6784; }
.bars .t8 { stroke: #c22727; } .bars .t9 { stroke: #62666d; }
.s0 { fill: var(--s0); } .s1 { fill: var(--s1); } .s2 { fill: var(--s2); } .s3 { fill: var(--s3); } .s4 { fill: var(--s4); }
.s5 { fill: var(--s5); } .sx { fill: var(--sx); }
.bars .on.s0, .bars .on.s1, .bars .on.s2, .bars .on.sx { fill: var(--dark); stroke: none; }
.bars .on.s3, .bars .on.s4, .bars .on.s5 { fill: var(--pale); stroke: none; }
.sx + path { stroke: var(--stripe); }
footer { margin-top: 3rem; padding-top: 1rem; border-top: 1px solid var(--line); color: var(--soft); font-size: 0.9rem; }
@media (max-width: 40rem) {
  h2 { margin-top: 2rem; }
  .tiles { grid-template-columns: repeat(2, 1fr); }
  .tiles li { padding: 0.6rem 0.75rem; }
  .tiles strong { font-size: 1.5rem; }
  .stack thead { position: absolute; clip-path: inset(50%); }
  .stack table, .stack tbody { display: block; }
  .stack tr { display: flex; flex-wrap: wrap; gap: 0.1rem 0.75rem; border-bottom: 1px solid var(--line); padding: 0.5rem 0; }
  .stack .n + :not(.n) { padding-left: 0; }
  .stack th, .stack td { border: none; padding: 0; flex: 1 1 100%; order: 2; }
  .stack th { flex: 1 1 50%; order: 0; }
  .stack .n { flex: none; order: 1; }
  .stack [data-label]::before { content: attr(data-label) " "; color: var(--soft); font-size: 0.85rem; }
  .stack td:empty { display: none; }
  .scroll table { min-width: 34rem; }
}
@media print {
  body { max-width: none; padding: 0; font-size: 9.5pt; }
  nav, summary { display: none; }
  a { color: inherit; text-decoration: none; }
  details::details-content { content-visibility: visible; display: block; height: auto; }
  details caption { position: static; clip-path: none; width: auto; height: auto; text-align: left; padding-top: 0.75rem; }
  h2, h3 { break-after: avoid; }
  tr, article, svg, .tiles li { break-inside: avoid; }
  svg, .alerts li { print-color-adjust: exact; -webkit-print-color-adjust: exact; }
}
)";

}  // namespace fernwick::lab
