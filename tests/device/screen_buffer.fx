// A pass into a screen buffer.
technique { pass < string RenderTarget = "ScreenBuffer2"; > { Lighting = FALSE; } }
