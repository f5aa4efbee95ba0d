// What the scene list asks of the dialog that owns it.
#pragma once

class SceneListOwner {
public:
    virtual ~SceneListOwner() = default;
    virtual int GetState() const = 0;        // the operation state; 0 = idle
    virtual int GetSceneCount() const = 0;   // completed scenes in the list
    virtual void SetPlayEnabled(int b) = 0;
    virtual void SetMergeEnabled(int b) = 0;
    virtual void SetCaptureEnabled(int b) = 0;
    virtual void StopFilePreview() = 0;
    virtual void SetSceneComment(int nRow, const char* pszText) = 0;
};
