/**
 * The warp: each pixel of the canvas samples the frame where an affine map says. Cubic like `orbitwalk render`'s (the
 * kernel with a = -0.75) while the canvas shows the frame's pixels about one to one or larger, from smaller copies of
 * the frame where it shows them smaller. Frames come as three planes of I420 or as one picture.
 */

export const vertexShader = `#version 300 es
void main() {
    gl_Position = vec4(vec2(gl_VertexID & 1, gl_VertexID >> 1) * 4.0 - 1.0, 0.0, 1.0);
}`;

const head = `#version 300 es
precision highp float;
uniform vec3 rowX;      // Frame from canvas, both in pixels with (0, 0) the centre of the top left one.
uniform vec3 rowY;
uniform float bottom;   // Where the canvas's lowest line of pixels stands; negative: the first line is the top one.
uniform bool smooth4;   // Cubic, not from smaller copies.
out vec4 colour;

// One axis of the kernel in three bilinear samples: the offsets from the pixel before, and their weights.
void kernel(float t, out vec3 at, out vec3 weight) {
    const float a = -0.75;
    float u = 1.0 - t;
    float before = ((a * (t + 1.0) - 5.0 * a) * (t + 1.0) + 8.0 * a) * (t + 1.0) - 4.0 * a;
    float left = ((a + 2.0) * t - (a + 3.0)) * t * t + 1.0;
    float right = ((a + 2.0) * u - (a + 3.0)) * u * u + 1.0;
    weight = vec3(before, left + right, 1.0 - before - left - right);
    at = vec3(-1.0, right / (left + right), 2.0);
}

vec4 cubic(sampler2D image, vec2 place) {
    vec2 size = vec2(textureSize(image, 0));
    vec2 whole = floor(place);
    vec3 atX, atY, weightX, weightY;
    kernel(place.x - whole.x, atX, weightX);
    kernel(place.y - whole.y, atY, weightY);
    atX = (whole.x + 0.5 + atX) / size.x;
    atY = (whole.y + 0.5 + atY) / size.y;
    vec4 sum = vec4(0.0);
    for (int y = 0; y < 3; ++y) {
        vec4 line = weightX.x * textureLod(image, vec2(atX.x, atY[y]), 0.0) +
            weightX.y * textureLod(image, vec2(atX.y, atY[y]), 0.0) +
            weightX.z * textureLod(image, vec2(atX.z, atY[y]), 0.0);
        sum += weightY[y] * line;
    }
    return sum;
}

vec2 framePlace() {
    vec2 canvas = gl_FragCoord.xy - 0.5;
    vec3 from = vec3(canvas.x, bottom < 0.0 ? canvas.y : bottom - canvas.y, 1.0);
    return vec2(dot(rowX, from), dot(rowY, from));
}
`;

export const pictureShader = `${head}
uniform sampler2D picture;
void main() {
    vec2 place = framePlace();
    vec2 size = vec2(textureSize(picture, 0));
    colour = vec4((smooth4 ? cubic(picture, place) : texture(picture, (place + 0.5) / size)).rgb, 1.0);
}`;

export const planesShader = `${head}
uniform sampler2D luma;
uniform sampler2D cb;
uniform sampler2D cr;
uniform mat3 rgbFromVideo;
uniform vec3 black;     // Luma and colour of black.
void main() {
    vec2 place = framePlace();
    vec2 size = vec2(textureSize(luma, 0));
    vec2 at = (place + 0.5) / size;
    // Colour stands on the left of each pair of columns and between each pair of lines.
    vec2 atColour = at + vec2(0.5, 0.0) / size;
    vec3 video = vec3(smooth4 ? cubic(luma, place).r : texture(luma, at).r, texture(cb, atColour).r,
        texture(cr, atColour).r);
    colour = vec4(rgbFromVideo * (video - black), 1.0);
}`;
