// How a contact sheet looks: on a screen of any width, in the light and in the dark, and on paper. Part of SheetHtml.
#ifndef DCFCTL_SHEET_STYLE_H
#define DCFCTL_SHEET_STYLE_H

namespace dcfctl {

// No "<" and no "&": the text stands in a document that is XML too.
inline constexpr const char* kSheetStyle = R"css(
:root{color-scheme:light dark;--page:#f6f6f4;--paper:#fff;--text:#1c1f22;--dim:#565d64;--line:#d5d9dc;--free:#e3e7ea;
--used:#1f6aa5;--link:#12598f;--badge:#eceff1;--lock:#7a4b00;--lock-bg:#fdf0d5;--warn:#8c1d18;--shade:#e9ecee}
@media(prefers-color-scheme:dark){:root{--page:#14171a;--paper:#1e2226;--text:#e6e8ea;--dim:#a3abb3;--line:#363c42;
--free:#343a40;--used:#6cb2e8;--link:#8cc4f0;--badge:#2d3339;--lock:#ffd58a;--lock-bg:#46340f;--warn:#ffb4ab;--shade:#272c31}}
*{box-sizing:border-box}
html{-webkit-text-size-adjust:100%}
body{margin:0 auto;padding:1rem clamp(.75rem,3vw,2rem) 3rem;max-width:100rem;background:var(--page);color:var(--text);
font:1rem/1.45 system-ui,-apple-system,"Segoe UI",Roboto,"Noto Sans","Liberation Sans",sans-serif;overflow-wrap:anywhere}
a{color:var(--link)}
h1{font-size:1.6rem;line-height:1.2;margin:.4rem 0}
h2{font-size:1.2rem;margin:2rem 0 .6rem;padding-bottom:.3rem;border-bottom:1px solid var(--line)}
h3{font-size:1rem;margin:0 0 .25rem}
p{margin:.3rem 0}
svg.icon{width:.9em;height:.9em;fill:currentColor;vertical-align:-.08em}
.dim{color:var(--dim);font-weight:normal;font-size:.9rem}
.skip{position:absolute;left:-99rem}
.skip:focus{position:static}
.row{list-style:none;margin:.5rem 0;padding:0;display:flex;flex-wrap:wrap;gap:.3rem .5rem}
.row li{background:var(--badge);border-radius:.3rem;padding:.1rem .5rem;font-variant-numeric:tabular-nums}
nav summary{cursor:pointer;color:var(--link)}
.warnings{border-left:.25rem solid var(--warn);margin:1rem 0;padding:.1rem 0 .1rem .9rem}
.warnings h2{border:0;margin:0;font-size:1rem;color:var(--warn)}
.warnings ul{margin:.2rem 0;padding-left:1.1rem}
.grid{list-style:none;margin:0;padding:0;display:grid;gap:.7rem;
grid-template-columns:repeat(auto-fill,minmax(min(10.5rem,46%),1fr))}
.grid li{content-visibility:auto;contain-intrinsic-size:auto 10rem auto 13rem;background:var(--paper);
border:1px solid var(--line);border-radius:.4rem;overflow:hidden}
figure{margin:0}
.pic{display:block;width:100%;aspect-ratio:4/3;object-fit:contain;background:var(--shade)}
.none{display:flex;flex-direction:column;align-items:center;justify-content:center;gap:.3rem;padding:.5rem;
color:var(--dim);font-size:.8rem;text-align:center}
.none svg{width:2.2rem;height:2.2rem;fill:currentColor;opacity:.75}
figcaption{padding:.4rem .5rem .5rem;font-size:.8rem;line-height:1.35}
.number{font-size:.95rem;font-weight:600;font-variant-numeric:tabular-nums}
.badges{display:flex;flex-wrap:wrap;gap:.25rem;margin:.2rem 0}
.badge{background:var(--badge);border-radius:.25rem;padding:0 .35rem;font-size:.75rem}
.lock{background:var(--lock-bg);color:var(--lock)}
.name,.date{display:block;font-size:.75rem;color:var(--dim);font-variant-numeric:tabular-nums}
.maps{list-style:none;margin:0;padding:0;display:grid;gap:1rem 2rem;
grid-template-columns:repeat(auto-fill,minmax(min(24rem,100%),1fr))}
.maps li{content-visibility:auto;contain-intrinsic-size:auto 24rem auto 6rem}
svg.map{display:block;width:100%;height:.9rem;background:var(--free);border:1px solid var(--line);border-radius:.2rem;overflow:visible}
svg.map path{fill:var(--used);stroke:var(--used);stroke-width:2px;vector-effect:non-scaling-stroke}
.ends{display:flex;justify-content:space-between;color:var(--dim);font-size:.7rem;font-variant-numeric:tabular-nums}
.runs{color:var(--dim);font-size:.85rem;font-variant-numeric:tabular-nums;margin:0}
#check{overflow-wrap:break-word}
.findings{list-style:none;margin:.8rem 0;padding:0;display:grid;gap:.9rem}
.finding{max-width:50rem}
.finding p{color:var(--dim);font-size:.9rem}
.finding ul{margin:.2rem 0;padding-left:1.1rem;font-size:.9rem}
footer{margin-top:2rem}
.defs{position:absolute;width:0;height:0}
@media print{
:root{--page:#fff;--paper:#fff;--text:#000;--dim:#333;--line:#999;--free:#fff;--used:#000;--link:#000;--badge:#fff;
--lock:#000;--lock-bg:#fff;--warn:#000;--shade:#f2f2f2;color-scheme:light}
@page{margin:12mm}
body{padding:0;max-width:none;font-size:9pt}
nav,.skip{display:none}
a{text-decoration:none}
h2,h3,section p.dim{break-after:avoid}
.name,.date{font-size:6.5pt}
.maps{grid-template-columns:1fr 1fr;gap:4mm 8mm}
.grid{grid-template-columns:repeat(5,1fr);gap:3mm}
.grid li,.maps li,.finding li{break-inside:avoid;content-visibility:visible}
.badge,.row li{border:1px solid #999}
.pic,svg.map,svg.map path{print-color-adjust:exact;-webkit-print-color-adjust:exact}
}
)css";

/// Drawings that are used by their names: in the place of a missing picture, and in badges.
inline constexpr const char* kSheetDrawings =
    R"svg(<svg class="defs" aria-hidden="true" focusable="false"><defs>)svg"
    R"svg(<symbol id="picture" viewBox="0 0 24 24"><path d="M3 4h18v16H3zm2 2v10l4-5 3 3.500 3-3.500 4 5V6zm3.500 4a1.500 1.500 0 1 1 0-3 1.500 1.500 0 0 1 0 3z"/></symbol>)svg"
    R"svg(<symbol id="movie" viewBox="0 0 24 24"><path d="M2 5h14v5l6-3v10l-6-3v5H2z"/></symbol>)svg"
    R"svg(<symbol id="lock" viewBox="0 0 24 24"><path d="M6 10V7a6 6 0 0 1 12 0v3h2v12H4V10zm3 0h6V7a3 3 0 0 0-6 0z"/></symbol>)svg"
    R"svg(</defs></svg>)svg";

} // namespace dcfctl

#endif
