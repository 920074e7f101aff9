"""The clips that bench/quality judges: simulated sweeps, each hard in a way of its own."""
from dataclasses import dataclass, field
from pathlib import Path

PHOTO = "/usr/share/backgrounds/picosdeeuropa_by_Aitzol_Berasategi.jpg"


@dataclass
class Clip:
    """A clip to capture: a file that is there already, or what `orbitwalk simulate` makes of a photograph."""

    name: str
    size: str = "1920x1080"
    frames: int = 60
    motion: list = field(default_factory=list)  # further arguments of simulate
    orientation: int = 0  # of the device, for capture
    file: Path = None  # set: a real clip, which has no truth

    def simulate_arguments(self, frames):
        return [PHOTO, "--size", self.size, "--frames", str(frames), *map(str, self.motion)]


SIMULATED = [
    Clip("720p slow", "1280x720", 60, ["--speed", 4, "--shake", 8, "--roll", 0.004]),
    Clip("720p upright", "720x1280", 60, ["--speed", 8, "--shake", 8, "--roll", 0.004]),
    Clip("1080p", "1920x1080", 60, ["--speed", 12, "--shake", 12]),
    Clip("1080p portrait", "1920x1080", 60, ["--speed", 12, "--shake", 12, "--direction", "top2bottom"], 90),
    Clip("1080p right to left", "1920x1080", 60, ["--speed", 12, "--shake", 12, "--direction", "right2left"]),
    Clip("1080p fast", "1920x1080", 60, ["--speed", 40, "--shake", 12]),
    Clip("1080p very shaky", "1920x1080", 60, ["--speed", 12, "--shake", 30, "--roll", 0.03]),
    Clip("1080p low texture", "1920x1080", 60, ["--speed", 12, "--shake", 12, "--softness", 8]),
    Clip("1080p noise", "1920x1080", 60, ["--speed", 12, "--shake", 12, "--noise", 8]),
    Clip("1080p exposure drift", "1920x1080", 60, ["--speed", 12, "--shake", 12, "--exposure-drift", 0.4]),
    Clip("1080p crossing object", "1920x1080", 60, ["--speed", 12, "--shake", 12, "--object", 0.6]),
    Clip("4K", "3840x2160", 30, ["--speed", 24, "--shake", 24]),
    Clip("4K fast and shaky", "3840x2160", 30, ["--speed", 60, "--shake", 40, "--roll", 0.02]),
]
QUICK = {"720p slow", "1080p", "1080p very shaky"}
QUICK_FRAMES = 24


def chosen_clips(quick, videos):
    clips = [clip for clip in SIMULATED if not quick or clip.name in QUICK]
    if quick:
        for clip in clips:
            clip.frames = QUICK_FRAMES
    return [Clip(Path(video).name, file=Path(video).resolve()) for video in videos] + clips
