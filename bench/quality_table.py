"""The results of bench/quality as Markdown, and the check that a rendered sweep is what it should be."""

# A rendered sweep's residual motion is well below its input's when it is at most this share of it.
WELL_BELOW = 0.5

UNMEASURED = "–"

HEADER = ("| clip | | residual x, y, px | angle, ° | of the input's | view kept | beyond the source | missing, px "
          "| sharpness | ms a frame | path error x, y, px; ° | drift, px a 100 px | repeated |")


def magnitude(residual):
    return (residual["xPixels"] ** 2 + residual["yPixels"] ** 2) ** 0.5


def share_of_input(video):
    """None when there is nothing to compare: a motion was not measured, or the input has none."""
    rest, given = video["residualMotion"], video["source"]["residualMotion"]
    return magnitude(rest) / magnitude(given) if rest and given and magnitude(given) else None


def cell(value, form):
    return UNMEASURED if value is None else format(value, form)


def ratio_cell(value, other):
    return cell(value / other if other else None, ".2f")


def residual_cells(residual):
    if residual is None:
        return [UNMEASURED, UNMEASURED]
    lost = f" ({residual['unmeasured']} lost)" if residual["unmeasured"] else ""
    return [f"{residual['xPixels']:.2f}, {residual['yPixels']:.2f}{lost}", f"{residual['angleDegrees']:.3f}"]


def path_cells(path):
    if not path:
        return ["", "", ""]
    x, y, angle = (path[key]["rms"] for key in ("xPixels", "yPixels", "angleDegrees"))
    return [f"{x:.2f}, {y:.2f}; {angle:.3f}", f"{path['driftPer100Pixels']['along']:+.2f}",
            f"{path['repeatedShare']:.0%}"]


def method_row(method, result):
    video = result["video"]
    source = video["source"]
    return ["", method, *residual_cells(video["residualMotion"]), cell(share_of_input(video), ".0%"),
            f"{source['keptView']:.1%}", f"{source['beyondSource']:.2%}", str(source["missingPixels"]),
            cell(source["sharpness"], ".2f"), f"{result['millisecondsPerFrame']:.0f}",
            *path_cells(result.get("path"))]


def clip_rows(clip):
    methods = clip["methods"]
    source = next(iter(methods.values()))["video"]["source"]
    yield [f"**{clip['name']}**, {clip['frames']} of {clip['size']}", "input",
           *residual_cells(source["residualMotion"]), *[""] * 9]
    for method, result in methods.items():
        yield method_row(method, result)


def one_view(clip):
    """Residual and angle of both at one view, that of vidstab and that of the refined sweep, and the ratios."""
    methods = clip["methods"]
    for view_of, ours, theirs in (("vidstab's", "refined at vidstab's view", "vidstab"),
                                  ("refined's", "refined", "vidstab at refined's view")):
        a, b = (methods[name]["video"] for name in (ours, theirs))
        shift, other_shift = (magnitude(video["residualMotion"]) for video in (a, b))
        angle, other_angle = (video["residualMotion"]["angleDegrees"] for video in (a, b))
        yield (view_of, a["source"]["keptView"], b["source"]["keptView"], shift, other_shift, angle, other_angle,
               b["source"]["beyondSource"], methods[ours]["plan"])


def path_error_cell(clip):
    error = clip["methods"]["refined"].get("pathError")
    return "{:.3f}, {:.3f}; {:.4f}".format(*error) if error else ""


def refined_rows(clip):
    own = clip["methods"]["vidstab"]["video"]["source"]["keptView"]
    view = clip["viewAtVidstabsResidual"]
    for view_of, kept, other_kept, shift, other_shift, angle, other_angle, beyond, plan in one_view(clip):
        planned = magnitude(plan["residualAfter"]) / plan["keep"]
        yield [clip["name"] if view_of == "vidstab's" else "", view_of, f"{kept:.1%}, {other_kept:.1%}",
               f"{shift:.3f}, {other_shift:.3f}", ratio_cell(shift, other_shift), ratio_cell(shift, planned),
               f"{angle:.4f}, {other_angle:.4f}", ratio_cell(angle, other_angle), f"{beyond:.2%}",
               *((f"{100 * (view - own):+.1f}", path_error_cell(clip), str(len(plan["unmeasuredFrames"])))
                 if view_of == "vidstab's" else ("", "", ""))]


REFINED_HEADER = ("| clip | view | kept: refined, vidstab | shift, px: refined, vidstab | ratio | of the planned "
                  "| angle, °: refined, vidstab | ratio | vidstab beyond the source | points at vidstab's shift "
                  "| path error x, y, px; ° | not measured |")


def refined_markdown(results):
    """Where both were run, the refined sweep beside vidstab at one view."""
    lines = [REFINED_HEADER, "|" + "---|" * (REFINED_HEADER.count("|") - 1)]
    for clip in results["clips"]:
        if clip["viewAtVidstabsResidual"]:
            lines += ["| " + " | ".join(row) + " |" for row in refined_rows(clip)]
    return "\n".join(lines) + "\n"


def markdown(results):
    lines = [HEADER, "|" + "---|" * (HEADER.count("|") - 1)]
    for clip in results["clips"]:
        lines += ["| " + " | ".join(row) + " |" for row in clip_rows(clip)]
    return "\n".join(lines) + "\n"


def shortcomings(results):
    """What a rendered sweep must never show."""
    for clip in results["clips"]:
        ours = clip["methods"].get("orbitwalk")
        if not ours:
            continue
        missing = ours["sweep"]["missingPixels"]
        if missing:
            yield f"{clip['name']}: {missing} missing pixels inside the crop"
        share = share_of_input(ours["video"])
        if share is None:
            yield f"{clip['name']}: the residual motion cannot be compared with the input's"
        elif share > WELL_BELOW:
            yield f"{clip['name']}: {share:.0%} of the input's residual motion is left"
