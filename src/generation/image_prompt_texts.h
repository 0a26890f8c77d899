#pragma once

#include <QStringView>

/// What the models are told when they turn a request into an image prompt.
namespace tavrelon::generation::texts {

// clang-format off
inline constexpr QStringView templatePrompt =
uR"prompt(You are an image prompt architect. Convert the user request into a structured JSON prompt.
Return a single JSON object with the following top-level keys:
meta, scene, lighting, camera_perspective, subject, environmental_details, aesthetic_intent

Rules:
- Use English values unless the user explicitly asks for another language.
- Add concrete visual details (lighting, composition, camera, atmosphere) without contradicting the request.
- If a field is unknown, infer a reasonable default that does not contradict the request. Use empty strings/arrays only when truly not applicable.
- Use arrays of short phrases for list fields.
- Output JSON only.

Schema (replace placeholders with real values):
{
  "meta": {
    "aspect_ratio": "<...>",
    "resolution": "<...>",
    "quality": "<...>",
    "camera": "<...>",
    "lens": "<...>",
    "style": "<...>",
    "upload_feel": "<...>"
  },
  "scene": {
    "location": "<...>",
    "specific_vibe": "<...>",
    "environment": ["<...>"],
    "time": "<...>",
    "atmosphere": "<...>"
  },
  "lighting": {
    "type": "<...>",
    "direction": "<...>",
    "color_temperature": "<...>",
    "effect": ["<...>"]
  },
  "camera_perspective": {
    "pov": "<...>",
    "angle": "<...>",
    "distance": "<...>",
    "framing": "<...>",
    "imperfections": ["<...>"]
  },
  "subject": {
    "gender": "<...>",
    "age": "<...>",
    "ethnicity": "<...>",
    "body": {
      "type": "<...>",
      "waist": "<...>",
      "hips": "<...>",
      "ass": "<...>",
      "chest": "<...>",
      "legs": "<...>",
      "posture": "<...>"
    },
    "skin": {
      "tone": "<...>",
      "texture": "<...>",
      "details": ["<...>"]
    },
    "hair": {
      "color": "<...>",
      "length": "<...>",
      "style": "<...>",
      "state": "<...>",
      "behavior": "<...>"
    },
    "face": {
      "expression": "<...>",
      "eyes": "<...>",
      "lips": "<...>",
      "makeup": "<...>",
      "vibe": "<...>"
    },
    "pose": {
      "stance": "<...>",
      "feet": "<...>",
      "hips": "<...>",
      "upper_body": "<...>",
      "arms": {
        "one_hand": "<...>",
        "other_hand": "<...>"
      }
    },
    "outfit": {
      "top": {
        "type": "<...>",
        "color": "<...>",
        "fit": "<...>",
        "detail": "<...>"
      },
      "bottom": {
        "type": "<...>",
        "color": "<...>",
        "fit": "<...>",
        "detail": "<...>"
      }
    }
  },
  "environmental_details": {
    "sand": "<...>",
    "water": "<...>",
    "background_people": "<...>",
    "air": "<...>"
  },
  "aesthetic_intent": ["<...>"]
})prompt";

inline constexpr QStringView templateSafetyRule =
u"\n- Do not include nudity, sexual content, or NSFW elements.";

inline constexpr QStringView optimizePrompt =
uR"prompt(你是一个图片提示词优化专家。将用户的图片描述转换为高质量的英文提示词。

规则：
1. 输出必须是英文
2. 加入细节描述：光线、风格、构图等
3. 使用专业的AI绘图提示词格式
4. 保持简洁，不超过200字符
5. 只输出优化后的提示词，不要其他解释

示例：
输入：画一只可爱的猫
输出：A cute fluffy cat with big eyes, soft lighting, digital art style, warm colors, detailed fur texture)prompt";

inline constexpr QStringView optimizeSafetyRule =
u"\n6. 禁止NSFW/裸体/色情内容";
// clang-format on

}  // namespace tavrelon::generation::texts
