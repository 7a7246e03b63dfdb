api.Find("//Tür"); api.Find("/*[@tag = '用户']");
api.Find("/*[]");
