using NUnit.Framework;

public class DoorTests
{
    [Test]
    public void OpensTheDoor()
    {
        api.Click("/*[@name = 'House']/*[@name = 'Door']");
        api.CallMethod("//Door/fn:component('Hinge')", "Open", new object[]{});
        int x = api.CallMethod<int>(@"//Bob's Sign", "Count", new object[]{ 2 });
        api?.Find(path: "//Lamp_2", timeout: 5);
        api.Get<List<int>, string>("//T\u00FCr");
        var s = $"//{name}"; api.Find(s); api.Find("//Knob" + suffix);
        Log($"found {api.Find("//Door")} at {x:N2}");
    }
}
