// Copyright Lodex contributors.
// The surface of the .NET API client that recorded scripts call, with empty bodies: enough for the C# compiler to
// check every line the Input Recorder writes. Used by tests/Recorder/CSharpCompileTests.cpp only.
namespace velt.unreal_api
{
	public enum MouseButtons { LEFT, RIGHT, CENTER, Unknown }

	public enum KeyCode
	{
		SpaceBar, W, A, E, Enter, Escape,
		Gamepad_LeftX, Gamepad_LeftY, Gamepad_RightTrigger, Gamepad_FaceButton_Bottom
	}

	public struct Vector2
	{
		public float X, Y;
		public Vector2(float x, float y) { X = x; Y = y; }
	}

	public struct Vector3
	{
		public float X, Y, Z;
		public Vector3(float x, float y, float z) { X = x; Y = y; Z = z; }
	}

	public struct Quaternion
	{
		public float X, Y, Z, W;
		public Quaternion(float x, float y, float z, float w) { X = x; Y = y; Z = z; W = w; }
	}

	public class ApiClient
	{
		public void Connect(string host) {}
		public float GetLastFPS() { return 60.0f; }
		public void KeyPress(KeyCode[] keys, int frames) {}
		public void Click(MouseButtons button, Vector2 position, int frames) {}
		public void DoubleClick(MouseButtons button, int x, int y, int frames) {}
		public void MouseDrag(MouseButtons button, Vector2 to, int frames, Vector2 from) {}
		public void MouseMoveToPoint(Vector2 to, int frames, Vector2 from) {}
		public void Scroll(int axis, int delta, int times) {}
		public void Wait(int milliseconds) {}
		public void WaitForEmptyInput() {}
		public void CreateInputDevice(string name, string type) {}
		public void VRInput(string pose, Vector3 position, Quaternion rotation, int controller) {}
		public void LoadLevel(string level) {}
		public void ClickObject(MouseButtons button, string lodestring, int frames) {}
		public Vector3 GetObjectPosition(string lodestring) { return new Vector3(0, 0, 0); }
		public object CallMethod(string lodestring, string method, object[] arguments) { return null; }
		public void WaitForObject(string lodestring) {}
	}
}
