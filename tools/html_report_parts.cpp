#include "tools/html_report_parts.h"

namespace sbd_tool {

const char k_report_style[] =
    R"(:root{color-scheme:light dark;--paper:#ffffff;--ink:#1c2430;--faint:#56606e;--line:#d5dae1;
--soft:#f3f5f8;--bad:#a8201a;--warn:#8a5a00;--good:#1d6b2c}
@media screen and (prefers-color-scheme:dark){
:root{--paper:#14181f;--ink:#e6e9ee;--faint:#a7b0bd;--line:#39404b;--soft:#1d232c;--bad:#f08a80;
--warn:#e3b653;--good:#79c98a}
}
body{margin:0 auto;max-width:72rem;padding:1rem 1.5rem;background:var(--paper);color:var(--ink);
font:16px/1.45 system-ui,sans-serif}
h1{font-size:1.6rem;margin:.5rem 0;overflow-wrap:anywhere}
h2{font-size:1.2rem;margin:2rem 0 .6rem;border-bottom:1px solid var(--line);overflow-wrap:anywhere}
.good,.bad{font-weight:bold;margin:.2rem 0}
.good{color:var(--good)}
.bad,.error b{color:var(--bad)}
.warning b{color:var(--warn)}
table{border-collapse:collapse;margin:.6rem 0;font-size:.9rem;display:block;overflow-x:auto}
th,td{text-align:left;vertical-align:top;padding:.2rem .7rem .2rem 0;
border-bottom:1px solid var(--line)}
td{overflow-wrap:anywhere}
tr.stated td:first-child{font-weight:bold}
tr.fault td{color:var(--bad)}
.finding{border-left:4px solid var(--bad);background:var(--soft);padding:.3rem .8rem;margin:.7rem 0}
.finding.warning{border-color:var(--warn)}
.finding p{margin:.2rem 0;overflow-wrap:anywhere}
.note,.key,footer{color:var(--faint);font-size:.9rem}
pre{overflow-x:auto;margin:.3rem 0;font:13px/1.4 ui-monospace,Menlo,Consolas,monospace}
input{font:inherit;padding:.2rem .4rem}
svg{max-width:100%;height:auto}
@media print{
body{max-width:none;padding:0;font-size:11pt}
.search{display:none}
table{display:table}
pre{white-space:pre-wrap}
.finding,tr,svg{break-inside:avoid}
h2{break-after:avoid}
}
)";

const char k_report_script[] = R"(
"use strict";
for (const field of document.querySelectorAll(".search")) {
  const rows = field.parentNode.querySelectorAll(".searched tbody tr");
  field.hidden = false;
  field.querySelector("input").addEventListener("input", (event) => {
    const words = event.target.value.toLowerCase().split(/\s+/);
    for (const row of rows) {
      const text = row.textContent.toLowerCase();
      row.hidden = !words.every((word) => text.includes(word));
    }
  });
}
)";

const char k_report_policy[] =
    "default-src 'none'; style-src 'unsafe-inline'; "
    "script-src 'sha256-+1k7KSwDQ07nf1G0TvHGUVBYAAnaKO55Jo+hzNC0RKs='";

}  // namespace sbd_tool
